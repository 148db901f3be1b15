// End to end: live PIDs, the monitor status and the stored and pending
// codes through the transporter, the ELM scan tool and a TCP link to the
// simulated adapter, compared with the simulated vehicle's own values.

#include "ecu.h"
#include "elmsimserver.h"
#include "simlink.h"
#include "iconnection.h"
#include "iscantool.h"
#include "linkopener.h"
#include "measurableparameter.h"
#include "obdtransporter.h"
#include "parameters/pendingtroublecodes.h"
#include "parameters/storedtroublecodes.h"
#include "powertrain/counterpid.h"
#include "powertrain/monitorstatus.h"
#include "powertrain/parameterfactory.h"
#include "serveroptions.h"
#include "tcpbus.h"

#include "fakeproxy.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

using namespace Obd;

namespace {

// The simulator on a free port, frozen at t = 0, and a link opened as the
// application opens it, header bytes on so that answers split by ECU.
class LiveVehicle
{
public:
    explicit LiveVehicle(const std::string& profile)
    {
        m_server.reset(new ElmSim::ElmSimServer(SimLink::quickOptions(profile)));
    }

    ~LiveVehicle()
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
        // The first request settles the protocol.
        const std::string first = "0100";
        std::vector<unsigned char> response;
        m_scantool->sendCommand(std::vector<unsigned char>(first.begin(), first.end()), response, 8000);
        return m_scantool->identifyProtocol() && m_scantool->setHeadersOn();
    }

    ExchangeResult run(ObdParameter& parameter) { return ObdTransporter().execute(&m_proxy, &parameter); }
    const ElmSim::Profile& profile() const { return m_server->profile(); }
    unsigned int protocol() const { return m_scantool->getProtocol(); }

private:
    std::unique_ptr<ElmSim::ElmSimServer> m_server;
    FakeProxy m_proxy;
    IConnection* m_connection = nullptr;
    IScantool* m_scantool = nullptr;
};

struct LivePid
{
    unsigned char pid;
    double resolution; // one step of the encoding; the truth is within it
};

// Engine load, coolant, fuel trim, MAP, rpm (quarters dropped), speed,
// timing, intake air, MAF, throttle, run time, fuel level, baro.
const LivePid LIVE_PIDS[] = {
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
    LiveVehicle sim(GetParam());
    ASSERT_TRUE(sim.open());
    const unsigned int protocol = sim.protocol();
    unsigned int compared = 0;
    for (const LivePid& live : LIVE_PIDS) {
        std::unique_ptr<PowertrainParameter> parameter(ParameterFactory::create(live.pid));
        ASSERT_TRUE(parameter);
        bool anySupports = false;
        for (const ElmSim::EcuProfile& ecu : sim.profile().ecus)
            anySupports = anySupports || ecu.supportsPid(0x01, live.pid);
        if (!anySupports)
            continue;
        SCOPED_TRACE(parameter->getName());
        ASSERT_EQ(ER_OK, sim.run(*parameter));
        for (const ElmSim::EcuProfile& profileEcu : sim.profile().ecus) {
            if (!profileEcu.supportsPid(0x01, live.pid))
                continue;
            SCOPED_TRACE(profileEcu.name);
            const Ecu ecu(profileEcu.id, protocol, "");
            const double truth = sim.profile().physicalValue(profileEcu.id, live.pid, 0.0);
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
    LiveVehicle sim(GetParam());
    ASSERT_TRUE(sim.open());
    const unsigned int protocol = sim.protocol();
    StoredTroubleCodes stored;
    PendingTroubleCodes pending;
    MonitorStatus status;
    ASSERT_EQ(ER_OK, sim.run(stored));
    ASSERT_EQ(ER_OK, sim.run(pending));
    ASSERT_EQ(ER_OK, sim.run(status));
    unsigned int codes = 0;
    for (const ElmSim::EcuProfile& profileEcu : sim.profile().ecus) {
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
