// The transporter against the simulated adapter over TCP, for every
// protocol family: the opening dialogue by hand (no discovery), then the
// support bitmaps through ObdTransporter, checked against the simulated
// vehicle's own PID and info-type lists.

#include "connection.h"
#include "elmscantool.h"
#include "elmsimserver.h"
#include "simlink.h"
#include "fakeproxy.h"
#include "iscantool.h"
#include "logcapture.h"
#include "obdtransporter.h"
#include "parameters/supportedvehicleinfos.h"
#include "powertrain/supportedpids.h"
#include "recordingparameter.h"
#include "serveroptions.h"
#include "tcpbus.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;

// Offsets within the range starting at base, as the support bitmap of a
// list of absolute numbers (range numbers themselves not in the list).
Bytes expectedOffsets(const std::vector<uint8_t>& numbers, unsigned int base)
{
    Bytes offsets;
    bool nextRange = false;
    for (uint8_t n : numbers) {
        if (n > base && n < base + 0x20)
            offsets.push_back(static_cast<unsigned char>(n - base));
        if (n > base + 0x20)
            nextRange = true;
    }
    std::sort(offsets.begin(), offsets.end());
    if (nextRange)
        offsets.push_back(32);
    return offsets;
}

// The adapter as the application opens it, up to headers on.
class OpenedAdapter
{
public:
    explicit OpenedAdapter(const std::string& profile)
    {
        server.reset(new ElmSim::ElmSimServer(SimLink::quickOptions(profile)));
    }

    ~OpenedAdapter()
    {
        scantool.reset();
        connection.reset();
        server->stop();
    }

    // Failures are reported through gtest by the caller's ASSERT_NO_FATAL_FAILURE.
    void open()
    {
        ASSERT_TRUE(server->start()) << server->errorString();
        TcpBus* bus = new TcpBus;
        ASSERT_TRUE(bus->init("127.0.0.1", server->port()));
        connection.reset(new Connection(bus));
        ASSERT_EQ(IMessageBus::OS_OK, connection->open(nullptr));
        scantool.reset(ElmScantool::create(connection.get()));
        ASSERT_TRUE(scantool);
        scantool->reset();
        ASSERT_TRUE(scantool->identify());
        ASSERT_TRUE(scantool->initialize(0));
        // The first request makes the adapter search for the protocol.
        Bytes request{'0', '1', '0', '0'};
        Bytes response;
        ASSERT_TRUE(scantool->sendCommand(request, response, 8000));
        ASSERT_TRUE(scantool->identifyProtocol());
        ASSERT_TRUE(scantool->setHeadersOn());
    }

    std::unique_ptr<ElmSim::ElmSimServer> server;
    std::unique_ptr<Connection> connection;
    std::unique_ptr<ElmScantool> scantool;
};

struct FamilyRow
{
    const char* profile;
    unsigned int protocolClass;
};

const FamilyRow FAMILIES[] = {
    {"can11", PROTOCOL_CAN_11BIT},  {"can29", PROTOCOL_CAN_29BIT}, {"kwp", PROTOCOL_KWP2000},
    {"iso9141", PROTOCOL_ISO9141}, {"j1850vpw", PROTOCOL_J1850},  {"j1850pwm", PROTOCOL_J1850},
    {"diesel", PROTOCOL_CAN_11BIT},
};

} // namespace

TEST(TransporterEndToEnd, SupportedPidsPerEcuMatchTheSimulatedVehicle)
{
    for (const FamilyRow& row : FAMILIES) {
        SCOPED_TRACE(row.profile);
        LogCapture::instance().clear();
        OpenedAdapter adapter(row.profile);
        ASSERT_NO_FATAL_FAILURE(adapter.open()) << LogCapture::instance().dump();
        EXPECT_EQ(row.protocolClass, adapter.scantool->getProtocol());
        EXPECT_TRUE(adapter.scantool->isHeadersOn());

        FakeProxy proxy(adapter.scantool.get());
        ObdTransporter transporter;
        const ElmSim::Profile& vehicle = adapter.server->profile();

        SupportedPids pids(1, 0x00);
        ASSERT_EQ(ER_OK, transporter.execute(&proxy, &pids)) << LogCapture::instance().dump();
        std::vector<unsigned int> ids;
        pids.getEcuIds(ids);
        ASSERT_EQ(vehicle.ecus.size(), ids.size()) << LogCapture::instance().dump();
        for (const ElmSim::EcuProfile& ecu : vehicle.ecus) {
            SCOPED_TRACE(ecu.name);
            Bytes offsets;
            ASSERT_TRUE(pids.getSupported(Ecu(ecu.id, row.protocolClass, ""), offsets));
            EXPECT_EQ(expectedOffsets(ecu.pids01, 0x00), offsets);
        }

        // The next range: answered when some ECU set bit 32, else NO DATA.
        bool anyNext = false;
        for (const ElmSim::EcuProfile& ecu : vehicle.ecus)
            anyNext = anyNext || !expectedOffsets(ecu.pids01, 0x20).empty();
        SupportedPids next(1, 0x20);
        ASSERT_EQ(anyNext ? ER_OK : ER_NO_DATA, transporter.execute(&proxy, &next))
            << LogCapture::instance().dump();
        for (const ElmSim::EcuProfile& ecu : vehicle.ecus) {
            SCOPED_TRACE(ecu.name);
            const Bytes expected = expectedOffsets(ecu.pids01, 0x20);
            Bytes offsets;
            if (next.getSupported(Ecu(ecu.id, row.protocolClass, ""), offsets)) {
                EXPECT_EQ(expected, offsets);
            } else {
                EXPECT_TRUE(expected.empty()) << "ECU with PIDs 21-40 did not answer";
            }
        }

        SupportedVehicleInfos infos(0x00);
        ASSERT_EQ(ER_OK, transporter.execute(&proxy, &infos)) << LogCapture::instance().dump();
        for (const ElmSim::EcuProfile& ecu : vehicle.ecus) {
            SCOPED_TRACE(ecu.name);
            Bytes offsets;
            if (infos.getSupported(Ecu(ecu.id, row.protocolClass, ""), offsets)) {
                EXPECT_EQ(expectedOffsets(ecu.infoTypes09, 0x00), offsets);
            } else {
                EXPECT_TRUE(ecu.infoTypes09.empty()) << "ECU with info types did not answer";
            }
        }
        EXPECT_FALSE(LogCapture::instance().contains("Failed to", LOG_ERROR)
                     || LogCapture::instance().contains("Signature mismatch"))
            << LogCapture::instance().dump();
    }
}

TEST(TransporterEndToEnd, MultiFrameVinAssembledOnCan)
{
    const FamilyRow rows[] = {{"can11", PROTOCOL_CAN_11BIT}, {"can29", PROTOCOL_CAN_29BIT}};
    for (const FamilyRow& row : rows) {
        SCOPED_TRACE(row.profile);
        LogCapture::instance().clear();
        OpenedAdapter adapter(row.profile);
        ASSERT_NO_FATAL_FAILURE(adapter.open()) << LogCapture::instance().dump();
        FakeProxy proxy(adapter.scantool.get());
        RecordingParameter vin(Bytes{0x09, 0x02}, Bytes{0x49, 0x02}, 3000);
        ASSERT_EQ(ER_OK, ObdTransporter().execute(&proxy, &vin)) << LogCapture::instance().dump();

        std::vector<const ElmSim::EcuProfile*> withVin;
        for (const ElmSim::EcuProfile& ecu : adapter.server->profile().ecus)
            if (!ecu.vin.empty())
                withVin.push_back(&ecu);
        ASSERT_EQ(withVin.size(), vin.payloads().size());
        for (size_t i = 0; i < withVin.size(); ++i) {
            Bytes expected{0x49, 0x02, 0x01};
            expected.insert(expected.end(), withVin[i]->vin.begin(), withVin[i]->vin.end());
            EXPECT_EQ(withVin[i]->id, vin.payloads()[i].ecuId);
            EXPECT_EQ(expected, vin.payloads()[i].data);
        }
    }
}
