// End to end: the service 05, 06 and 09 parameters through the transporter,
// the ELM scan tool and a TCP link to the simulated adapter, compared with
// the simulated vehicle's data.
#include "elmsimserver.h"
#include "simlink.h"
#include "iconnection.h"
#include "iscantool.h"
#include "linkopener.h"
#include "monitortestitem.h"
#include "obdtransporter.h"
#include "parameters/calibrationids.h"
#include "parameters/calibrationverificationnumbers.h"
#include "parameters/ecuname.h"
#include "parameters/monitortestresult.h"
#include "parameters/oxygensensortestresult.h"
#include "parameters/performancetrackingcompression.h"
#include "parameters/performancetrackingspark.h"
#include "parameters/vehicleidentificationnumber.h"
#include "serveroptions.h"
#include "tcpbus.h"

#include "fakeproxy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace Obd;

namespace {

// The simulator on a free port and a link opened the way the application
// opens it, with header bytes shown so that answers split by ECU. The ECU
// list of discovery is not needed: the vehicle's own list is compared.
class SimVehicle
{
public:
    explicit SimVehicle(const std::string& profile)
    {
        m_server.reset(new ElmSim::ElmSimServer(SimLink::quickOptions(profile)));
    }

    ~SimVehicle()
    {
        if (m_connection)
            m_connection->close();
        delete m_scantool;
        delete m_connection;
        m_server->stop();
    }

    bool open()
    {
        if (!m_server->start())
            return false;
        TcpBus* bus = new TcpBus();
        if (!bus->init("127.0.0.1", m_server->port())) {
            delete bus;
            return false;
        }
        m_proxy.setInitializeResult(true);
        if (LinkOpener().open(bus, nullptr, &m_proxy, m_connection, m_scantool) != LinkOpener::LO_OK)
            return false;
        // As discovery does: a first request settles the protocol, then the
        // adapter is asked which one it is and shows header bytes.
        const std::string first = "0100";
        std::vector<unsigned char> response;
        m_scantool->sendCommand(std::vector<unsigned char>(first.begin(), first.end()), response,
                                8000);
        return m_scantool->identifyProtocol() && m_scantool->setHeadersOn();
    }

    ExchangeResult run(ObdParameter& parameter)
    {
        return ObdTransporter().execute(&m_proxy, &parameter);
    }

    const ElmSim::Profile& profile() const { return m_server->profile(); }
    unsigned int protocol() const { return m_scantool->getProtocol(); }

private:
    std::unique_ptr<ElmSim::ElmSimServer> m_server;
    FakeProxy m_proxy;
    IConnection* m_connection = nullptr;
    IScantool* m_scantool = nullptr;
};

Ecu ecuOf(const ElmSim::EcuProfile& ecu, unsigned int protocol)
{
    return Ecu(ecu.id, protocol, "");
}

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
    SimVehicle sim(GetParam());
    ASSERT_TRUE(sim.open());
    const unsigned int protocol = sim.protocol();

    VehicleIdentificationNumber vin;
    CalibrationIds calibrationIds;
    CalibrationVerificationNumbers cvns;
    EcuName names;
    PerformanceTrackingSpark spark;
    PerformanceTrackingCompression compression;
    struct Run
    {
        ObdParameter* parameter;
        unsigned char infoType;
    };
    const Run runs[] = { { &vin, 0x02 },   { &calibrationIds, 0x04 }, { &cvns, 0x06 },
                         { &spark, 0x08 }, { &names, 0x0A },          { &compression, 0x0B } };
    for (const Run& run : runs) {
        bool anySupports = false;
        for (const ElmSim::EcuProfile& ecu : sim.profile().ecus)
            anySupports = anySupports || ecu.supportsInfoType(run.infoType);
        if (!anySupports)
            continue;
        SCOPED_TRACE("info type " + std::to_string(run.infoType));
        EXPECT_EQ(ER_OK, sim.run(*run.parameter));
    }

    unsigned int checked = 0;
    for (const ElmSim::EcuProfile& profileEcu : sim.profile().ecus) {
        SCOPED_TRACE(profileEcu.name);
        const Ecu ecu = ecuOf(profileEcu, protocol);
        if (profileEcu.supportsInfoType(0x02)) {
            EXPECT_EQ(profileEcu.vin, vin.getVin(ecu));
            ++checked;
        }
        if (profileEcu.supportsInfoType(0x04)) {
            EXPECT_EQ(profileEcu.calibrationIds, calibrationIds.getCalibrationIds(ecu));
            ++checked;
        }
        if (profileEcu.supportsInfoType(0x06)) {
            const std::vector<unsigned int> numbers = cvns.getVerificationNumbers(ecu);
            EXPECT_EQ(profileEcu.cvns, std::vector<uint32_t>(numbers.begin(), numbers.end()));
            ++checked;
        }
        if (profileEcu.supportsInfoType(0x0A)) {
            EXPECT_EQ(profileEcu.ecuNameAbbreviation, names.getShortName(ecu));
            EXPECT_EQ(profileEcu.ecuNameText, names.getText(ecu));
            EXPECT_EQ(EcuName::fullNameOf(profileEcu.ecuNameAbbreviation), names.getFullName(ecu));
            ++checked;
        }
        const bool diesel = profileEcu.supportsInfoType(0x0B);
        if (profileEcu.supportsInfoType(0x08) || diesel) {
            std::map<unsigned int, unsigned int> counters =
                diesel ? compression.getCounters(ecu) : spark.getCounters(ecu);
            const size_t tableSize = diesel ? PerformanceTrackingCompression::COUNTER_COUNT
                                            : PerformanceTrackingSpark::COUNTER_COUNT;
            ASSERT_FALSE(counters.empty());
            for (size_t i = 0; i < profileEcu.performanceCounters.size() && i < tableSize; ++i) {
                SCOPED_TRACE("counter " + std::to_string(i));
                EXPECT_EQ(profileEcu.performanceCounters[i], counters[static_cast<unsigned int>(i)]);
            }
            ++checked;
        }
    }
    EXPECT_GT(checked, 0u);
}

INSTANTIATE_TEST_SUITE_P(Profiles, VehicleInfoEndToEnd,
                         ::testing::Values("can11", "can29", "iso9141", "kwp", "j1850pwm",
                                           "j1850vpw", "diesel"));

TEST(MonitorTestsEndToEnd, CanRecordsMatchTheVehicle)
{
    for (const char* profileName : { "can11", "can29" }) {
        SCOPED_TRACE(profileName);
        SimVehicle sim(profileName);
        ASSERT_TRUE(sim.open());
        const unsigned int protocol = sim.protocol();
        ASSERT_TRUE(isCanProtocol(protocol));
        unsigned int compared = 0;
        for (const ElmSim::EcuProfile& profileEcu : sim.profile().ecus) {
            for (unsigned char mid : profileEcu.monitorIds()) {
                SCOPED_TRACE(profileEcu.name + " MID " + std::to_string(mid));
                MonitorTestResult result(mid);
                ASSERT_EQ(ER_OK, sim.run(result));
                MonitorTestResult::TestItemData items =
                    result.getTestItems(ecuOf(profileEcu, protocol), mid);
                size_t index = 0;
                for (const ElmSim::MonitorRecord& record : profileEcu.monitorTests) {
                    if (record.mid != mid)
                        continue;
                    ASSERT_LT(index, items.size());
                    const IMonitorTestItem& item = *items[index++];
                    EXPECT_EQ(record.tid, item.getTid());
                    EXPECT_EQ(record.unitScaling, item.getScalingId());
                    EXPECT_EQ(record.value, item.getValue());
                    EXPECT_EQ(record.minimum, item.getMinimum());
                    EXPECT_EQ(record.maximum, item.getMaximum());
                    auto number = [&record](uint16_t raw) {
                        return record.unitScaling >= 0x80 ? static_cast<int>(static_cast<int16_t>(raw))
                                                          : static_cast<int>(raw);
                    };
                    EXPECT_EQ(number(record.minimum) <= number(record.value)
                                  && number(record.value) <= number(record.maximum),
                              item.isPassed());
                    ++compared;
                }
                EXPECT_EQ(index, items.size());
            }
        }
        EXPECT_GT(compared, 0u);
    }
}

TEST(MonitorTestsEndToEnd, LegacyLinesMatchTheVehicle)
{
    SimVehicle sim("iso9141");
    ASSERT_TRUE(sim.open());
    const unsigned int protocol = sim.protocol();
    ASSERT_FALSE(isCanProtocol(protocol));
    unsigned int compared = 0;
    for (const ElmSim::EcuProfile& profileEcu : sim.profile().ecus) {
        for (unsigned char tid : profileEcu.monitorIds()) {
            SCOPED_TRACE("TID " + std::to_string(tid));
            MonitorTestResult result(tid);
            ASSERT_EQ(ER_OK, sim.run(result));
            MonitorTestResult::TestItemData items =
                result.getTestItems(ecuOf(profileEcu, protocol), tid);
            size_t index = 0;
            for (const ElmSim::LegacyMonitorRecord& record : profileEcu.legacyMonitorTests) {
                if (record.tid != tid)
                    continue;
                ASSERT_LT(index, items.size());
                auto* item = dynamic_cast<const MonitorTestItem*>(items[index++].get());
                ASSERT_NE(nullptr, item);
                EXPECT_EQ(record.componentId, item->getComponentId());
                EXPECT_EQ(record.limitIsMinimum ? MonitorTestItem::LIMIT_MINIMUM
                                                : MonitorTestItem::LIMIT_MAXIMUM,
                          item->getLimitType());
                EXPECT_EQ(record.value, item->getValue());
                EXPECT_EQ(record.limit, item->getLimit());
                EXPECT_EQ(record.limitIsMinimum ? record.value >= record.limit
                                                : record.value <= record.limit,
                          item->isPassed());
                ++compared;
            }
            EXPECT_EQ(index, items.size());
        }
    }
    EXPECT_GT(compared, 0u);
}

TEST(OxygenSensorTestsEndToEnd, MatchTheVehicle)
{
    SimVehicle sim("iso9141");
    ASSERT_TRUE(sim.open());
    const unsigned int protocol = sim.protocol();
    unsigned int compared = 0;
    for (const ElmSim::EcuProfile& profileEcu : sim.profile().ecus) {
        std::vector<unsigned char> tids;
        for (const ElmSim::OxygenSensorTest& test : profileEcu.oxygenSensorTests) {
            if (std::find(tids.begin(), tids.end(), test.tid) == tids.end())
                tids.push_back(test.tid);
        }
        for (unsigned char tid : tids) {
            SCOPED_TRACE("TID " + std::to_string(tid));
            OxygenSensorTestResult result(tid);
            ASSERT_EQ(ER_OK, sim.run(result));
            const Ecu ecu = ecuOf(profileEcu, protocol);
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
