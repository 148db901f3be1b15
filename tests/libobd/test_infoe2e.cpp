// End to end: the service 05, 06 and 09 parameters through the transporter,
// the ELM scan tool and a TCP link to the simulated adapter, compared with
// the simulated vehicle's data.
#include "iscantool.h"
#include "monitortestitem.h"
#include "parameters/calibrationids.h"
#include "parameters/calibrationverificationnumbers.h"
#include "parameters/ecuname.h"
#include "parameters/monitortestresult.h"
#include "parameters/oxygensensortestresult.h"
#include "parameters/performancetrackingcompression.h"
#include "parameters/performancetrackingspark.h"
#include "parameters/vehicleidentificationnumber.h"
#include "simlink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <map>
#include <string>
#include <vector>

using namespace Obd;

namespace {

double oxygenPerBit(unsigned char tid)
{
    if ((tid >= 0x01 && tid <= 0x04) || tid == 0x07 || tid == 0x08)
        return 0.005;
    if (tid == 0x05 || tid == 0x06)
        return 0.004;
    if (tid == 0x09 || tid == 0x0A)
        return 0.04;
    return 1.0;
}

} // namespace

class VehicleInfoEndToEnd : public ::testing::TestWithParam<const char*>
{
};

TEST_P(VehicleInfoEndToEnd, MatchesTheVehicle)
{
    SimLink* sim = SimLink::opened(GetParam());
    ASSERT_TRUE(sim);
    const unsigned int protocol = sim->scantool()->getProtocol();
    const std::vector<ElmSim::EcuProfile>& ecus = sim->server().profile().ecus;
    VehicleIdentificationNumber vin;
    CalibrationIds calibrationIds;
    CalibrationVerificationNumbers cvns;
    EcuName names;
    PerformanceTrackingSpark spark;
    PerformanceTrackingCompression compression;
    const std::pair<ObdParameter*, unsigned char> runs[] = {
        {&vin, 0x02}, {&calibrationIds, 0x04}, {&cvns, 0x06}, {&spark, 0x08}, {&names, 0x0A}, {&compression, 0x0B}};
    for (const auto& run : runs) {
        SCOPED_TRACE("info type " + std::to_string(run.second));
        const bool anySupports = std::any_of(ecus.begin(), ecus.end(), [&run](const ElmSim::EcuProfile& ecu) {
            return ecu.supportsInfoType(run.second);
        });
        EXPECT_EQ(anySupports ? ER_OK : ER_NO_DATA, sim->execute(*run.first));
    }
    unsigned int checked = 0;
    for (const ElmSim::EcuProfile& truth : ecus) {
        SCOPED_TRACE(truth.name);
        const Ecu ecu(truth.id, protocol, "");
        if (truth.supportsInfoType(0x02) && ++checked) {
            EXPECT_EQ(truth.vin, vin.getVin(ecu));
        }
        if (truth.supportsInfoType(0x04) && ++checked) {
            EXPECT_EQ(truth.calibrationIds, calibrationIds.getCalibrationIds(ecu));
        }
        if (truth.supportsInfoType(0x06) && ++checked) {
            const std::vector<unsigned int> numbers = cvns.getVerificationNumbers(ecu);
            EXPECT_EQ(truth.cvns, std::vector<uint32_t>(numbers.begin(), numbers.end()));
        }
        if (truth.supportsInfoType(0x0A) && ++checked) {
            EXPECT_EQ(truth.ecuNameAbbreviation, names.getShortName(ecu));
            EXPECT_EQ(truth.ecuNameText, names.getText(ecu));
            EXPECT_EQ(EcuName::fullNameOf(truth.ecuNameAbbreviation), names.getFullName(ecu));
        }
        const bool diesel = truth.supportsInfoType(0x0B);
        if ((truth.supportsInfoType(0x08) || diesel) && ++checked) {
            std::map<unsigned int, unsigned int> counters =
                diesel ? compression.getCounters(ecu) : spark.getCounters(ecu);
            const size_t tableSize = diesel ? PerformanceTrackingCompression::COUNTER_COUNT
                                            : PerformanceTrackingSpark::COUNTER_COUNT;
            ASSERT_FALSE(counters.empty());
            for (size_t i = 0; i < truth.performanceCounters.size() && i < tableSize; ++i)
                EXPECT_EQ(truth.performanceCounters[i], counters[static_cast<unsigned int>(i)]) << "counter " << i;
        }
    }
    EXPECT_GT(checked, 0u);
}

INSTANTIATE_TEST_SUITE_P(Profiles, VehicleInfoEndToEnd,
                         ::testing::Values("can11", "can29", "iso9141", "kwp", "j1850pwm",
                                           "j1850vpw", "diesel"));

class MonitorTestsEndToEnd : public ::testing::TestWithParam<const char*>
{
};

// CAN gives records per MID, the older protocols lines per TID.
TEST_P(MonitorTestsEndToEnd, MatchTheVehicle)
{
    SimLink* sim = SimLink::opened(GetParam());
    ASSERT_TRUE(sim);
    const unsigned int protocol = sim->scantool()->getProtocol();
    unsigned int compared = 0;
    for (const ElmSim::EcuProfile& profileEcu : sim->server().profile().ecus) {
        for (unsigned char id : profileEcu.monitorIds()) {
            SCOPED_TRACE(profileEcu.name + " monitor " + std::to_string(id));
            MonitorTestResult result(id);
            ASSERT_EQ(ER_OK, sim->execute(result));
            MonitorTestResult::TestItemData items = result.getTestItems(Ecu(profileEcu.id, protocol, ""), id);
            size_t index = 0;
            for (const ElmSim::MonitorRecord& record : profileEcu.monitorTests) {
                if (record.mid != id)
                    continue;
                ASSERT_LT(index, items.size());
                const IMonitorTestItem& item = *items[index++];
                EXPECT_EQ(record.tid, item.getTid());
                EXPECT_EQ(record.unitScaling, item.getScalingId());
                EXPECT_EQ(record.value, item.getValue());
                EXPECT_EQ(record.minimum, item.getMinimum());
                EXPECT_EQ(record.maximum, item.getMaximum());
                auto number = [&record](uint16_t raw) {
                    return record.unitScaling >= 0x80 ? static_cast<int>(static_cast<int16_t>(raw)) : int(raw);
                };
                const bool passed = number(record.minimum) <= number(record.value)
                                    && number(record.value) <= number(record.maximum);
                EXPECT_EQ(passed, item.isPassed());
            }
            for (const ElmSim::LegacyMonitorRecord& record : profileEcu.legacyMonitorTests) {
                if (record.tid != id)
                    continue;
                ASSERT_LT(index, items.size());
                auto* item = dynamic_cast<const MonitorTestItem*>(items[index++].get());
                ASSERT_NE(nullptr, item);
                EXPECT_EQ(record.componentId, item->getComponentId());
                EXPECT_EQ(record.limitIsMinimum ? MonitorTestItem::LIMIT_MINIMUM : MonitorTestItem::LIMIT_MAXIMUM,
                          item->getLimitType());
                EXPECT_EQ(record.value, item->getValue());
                EXPECT_EQ(record.limit, item->getLimit());
                EXPECT_EQ(record.limitIsMinimum ? record.value >= record.limit : record.value <= record.limit,
                          item->isPassed());
            }
            EXPECT_EQ(index, items.size());
            compared += static_cast<unsigned int>(index);
        }
    }
    EXPECT_GT(compared, 0u);
}

INSTANTIATE_TEST_SUITE_P(Profiles, MonitorTestsEndToEnd, ::testing::Values("can11", "can29", "iso9141"));

TEST(OxygenSensorTestsEndToEnd, MatchTheVehicle)
{
    SimLink* sim = SimLink::opened("iso9141");
    ASSERT_TRUE(sim);
    const unsigned int protocol = sim->scantool()->getProtocol();
    unsigned int compared = 0;
    for (const ElmSim::EcuProfile& profileEcu : sim->server().profile().ecus) {
        std::set<unsigned char> tids;
        for (const ElmSim::OxygenSensorTest& test : profileEcu.oxygenSensorTests)
            tids.insert(test.tid);
        for (unsigned char tid : tids) {
            SCOPED_TRACE("TID " + std::to_string(tid));
            OxygenSensorTestResult result(tid);
            ASSERT_EQ(ER_OK, sim->execute(result));
            const Ecu ecu = Ecu(profileEcu.id, protocol, "");
            for (const ElmSim::OxygenSensorTest& test : profileEcu.oxygenSensorTests) {
                if (test.tid != tid)
                    continue;
                int bit = 0;
                while (bit < 8 && test.sensor != (1u << bit))
                    ++bit;
                SCOPED_TRACE("sensor bit " + std::to_string(bit));
                std::shared_ptr<OxygenSensorTestItem> item =
                    result.getItem(ecu, static_cast<OxygenSensorLocation>(bit));
                ASSERT_TRUE(item);
                // One bit of the TID's scaling is the resolution of the line.
                const double bitSize = oxygenPerBit(tid);
                EXPECT_NEAR(test.value, item->getValue(), bitSize / 2 + 1e-6);
                EXPECT_NEAR(test.minimum, item->getMinimum(), bitSize / 2 + 1e-6);
                EXPECT_NEAR(test.maximum, item->getMaximum(), bitSize / 2 + 1e-6);
                EXPECT_EQ(test.minimum <= test.value && test.value <= test.maximum,
                          item->isPassed());
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 0u);
}
