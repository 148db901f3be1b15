// End to end: live PIDs, the monitor status and the stored and pending
// codes through the transporter, the ELM scan tool and a TCP link to the
// simulated adapter, compared with the simulated vehicle's own values.

#include "ecu.h"
#include "iscantool.h"
#include "measurableparameter.h"
#include "parameters/pendingtroublecodes.h"
#include "parameters/storedtroublecodes.h"
#include "powertrain/counterpid.h"
#include "powertrain/monitorstatus.h"
#include "powertrain/parameterfactory.h"
#include "simlink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

using namespace Obd;

namespace {

// Each PID with one step of its encoding (the truth is within it): engine load, coolant,
// fuel trim, MAP, rpm (quarters dropped), speed, timing, intake air, MAF, throttle, run
// time, fuel level, baro.
const struct { unsigned char pid; double resolution; } LIVE_PIDS[] = {
    { 0x04, 100.0 / 255 }, { 0x05, 1.0 }, { 0x06, 100.0 / 128 }, { 0x0B, 1.0 }, { 0x0C, 1.0 },
    { 0x0D, 1.0 }, { 0x0E, 0.5 }, { 0x0F, 1.0 }, { 0x10, 0.01 }, { 0x11, 100.0 / 255 },
    { 0x1F, 1.0 }, { 0x2F, 1.0 + 100.0 / 255 }, { 0x33, 1.0 },
};

} // namespace

class PidCatalogueEndToEnd : public ::testing::TestWithParam<const char*>
{
};

TEST_P(PidCatalogueEndToEnd, LivePidsMatchTheVehicle)
{
    SimLink* sim = SimLink::opened(GetParam());
    ASSERT_TRUE(sim);
    const unsigned int protocol = sim->scantool()->getProtocol();
    unsigned int compared = 0;
    for (const auto& live : LIVE_PIDS) {
        std::unique_ptr<PowertrainParameter> parameter(ParameterFactory::create(live.pid));
        ASSERT_TRUE(parameter);
        SCOPED_TRACE(parameter->getName());
        const std::vector<ElmSim::EcuProfile>& ecus = sim->server().profile().ecus;
        const bool anySupports = std::any_of(ecus.begin(), ecus.end(), [&live](const ElmSim::EcuProfile& ecu) {
            return ecu.supportsPid(0x01, live.pid);
        });
        ASSERT_EQ(anySupports ? ER_OK : ER_NO_DATA, sim->execute(*parameter));
        for (const ElmSim::EcuProfile& profileEcu : ecus) {
            if (!profileEcu.supportsPid(0x01, live.pid))
                continue;
            SCOPED_TRACE(profileEcu.name);
            const Ecu ecu(profileEcu.id, protocol, "");
            const double truth = sim->server().profile().physicalValue(profileEcu.id, live.pid, 0.0);
            double got = 0.0;
            if (const MeasurableParameter* numeric = dynamic_cast<const MeasurableParameter*>(parameter.get())) {
                std::vector<float> values;
                numeric->getValues(ecu, US_METRIC, values);
                ASSERT_FALSE(values.empty());
                got = values[0];
            } else {
                got = dynamic_cast<const CounterPid&>(*parameter).getValue(ecu);
            }
            EXPECT_NEAR(truth, got, live.resolution + 1e-6);
            ++compared;
        }
    }
    EXPECT_GE(compared, 5u);
}

TEST_P(PidCatalogueEndToEnd, TroubleCodesAndMonitorStatusMatchTheVehicle)
{
    SimLink* sim = SimLink::opened(GetParam());
    ASSERT_TRUE(sim);
    const unsigned int protocol = sim->scantool()->getProtocol();
    StoredTroubleCodes stored;
    PendingTroubleCodes pending;
    MonitorStatus status;
    ASSERT_EQ(ER_OK, sim->execute(stored));
    ASSERT_EQ(ER_OK, sim->execute(pending));
    ASSERT_EQ(ER_OK, sim->execute(status));
    unsigned int codes = 0;
    for (const ElmSim::EcuProfile& profileEcu : sim->server().profile().ecus) {
        SCOPED_TRACE(profileEcu.name);
        const Ecu ecu(profileEcu.id, protocol, "");
        std::vector<Dtc> storedDtcs;
        std::vector<Dtc> pendingDtcs;
        ASSERT_TRUE(stored.getDtcs(ecu, storedDtcs));
        ASSERT_TRUE(pending.getDtcs(ecu, pendingDtcs));
        std::vector<std::string> storedCodes;
        for (const Dtc& dtc : storedDtcs) {
            storedCodes.push_back(dtc.getCode());
            EXPECT_EQ(Dtc::categoryOf(dtc.getCode()), dtc.getCategory());
            EXPECT_FALSE(dtc.getDescription().empty());
        }
        std::vector<std::string> pendingCodes;
        for (const Dtc& dtc : pendingDtcs)
            pendingCodes.push_back(dtc.getCode());
        EXPECT_EQ(profileEcu.storedDtcs, storedCodes);
        EXPECT_EQ(profileEcu.pendingDtcs, pendingCodes);
        codes += static_cast<unsigned int>(storedCodes.size() + pendingCodes.size());
        if (profileEcu.supportsPid(0x01, 0x01)) {
            EXPECT_EQ(profileEcu.milOn(), status.isMilOn(ecu));
            EXPECT_EQ(profileEcu.storedDtcs.size(), status.getDtcCount(ecu));
            EXPECT_EQ(profileEcu.compressionIgnition, status.isCompressionIgnition(ecu));
        }
    }
    EXPECT_GT(codes, 0u) << "the profile should carry codes to compare";
}

INSTANTIATE_TEST_SUITE_P(Profiles, PidCatalogueEndToEnd, ::testing::Values("can11", "kwp", "iso9141", "j1850pwm"));
