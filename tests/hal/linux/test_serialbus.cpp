// The serial bus and the vehicle link end to end: elmsim behind a
// pseudo-terminal that only answers at its own line speed, and a TCP connect
// that nobody answers (a listener on loopback whose backlog is full).

#include "adapteraddress.h"
#include "ecu.h"
#include "idisconnectlistener.h"
#include "iscantool.h"
#include "measurableparameter.h"
#include "obdproxy.h"
#include "obdtransporter.h"
#include "parameters/storedtroublecodes.h"
#include "powertrain/parameterfactory.h"
#include "simlink.h"
#include "simterminal.h"
#include "vehiclelink.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <sys/socket.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <thread>

using namespace Obd;

namespace {

bool waitFor(const std::function<bool()>& done, int ms = 60000)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    while (!done() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return done();
}

// A listener on 127.0.0.1 whose accept queue one connection fills: the
// kernel drops every later SYN, as an adapter out of range would.
struct FullListener
{
    int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    int filler = ::socket(AF_INET, SOCK_STREAM, 0);
    unsigned int port = 0;
    FullListener()
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof(address);
        if (::bind(listener, reinterpret_cast<sockaddr*>(&address), length) != 0 || ::listen(listener, 0) != 0
            || ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0
            || ::connect(filler, reinterpret_cast<sockaddr*>(&address), length) != 0)
            return;
        port = ntohs(address.sin_port);
    }
    ~FullListener()
    {
        ::close(filler);
        ::close(listener);
    }
};

// An opening on its own thread, watched step by step.
struct Opening : IDisconnectListener
{
    ObdProxy proxy;
    std::atomic<int> disconnects{ 0 };
    VehicleLink link{ &proxy, this };
    std::mutex mutex;
    std::set<std::string> steps;
    std::atomic<bool> done{ false };
    VehicleLink::Status status = VehicleLink::VL_OK;
    std::thread thread;

    explicit Opening(const AdapterAddress& address)
    {
        link.setProgress([this](const std::string& step) {
            std::lock_guard<std::mutex> lock(mutex);
            steps.insert(step);
        });
        thread = std::thread([this, address] {
            status = link.open(address);
            done = true;
        });
    }
    ~Opening() { thread.join(); }
    void onDisconnected() override { ++disconnects; }
    bool reached(const std::string& step)
    {
        std::lock_guard<std::mutex> lock(mutex);
        return steps.count(step) != 0;
    }
};

// How a cancelled wait shows it was ended rather than run out.
enum Evidence { CONNECT_GIVEN_UP, LINK_DROPPED, STATUS_ONLY };

ElmSim::ServerOptions atSpeed(speed_t speed)
{
    ElmSim::ServerOptions options = SimLink::quickOptions("can11");
    options.lineSpeed = speed;
    return options;
}

} // namespace

TEST(SerialLink, OpensAtTheAdaptersRateAndReadsCodesAndCoolant)
{
    const struct
    {
        const char* name;
        speed_t adapterSpeed;
        unsigned int baud;
        VehicleLink::Status expected;
    } rows[] = {
        { "genuine adapter at its factory rate", B38400, 38400, VehicleLink::VL_OK },
        { "old clone found by detection", B9600, AdapterAddress::AUTO_BAUD, VehicleLink::VL_OK },
        { "STN chip found by detection", B115200, AdapterAddress::AUTO_BAUD, VehicleLink::VL_OK },
        { "last rate detection tries", B500000, AdapterAddress::AUTO_BAUD, VehicleLink::VL_OK },
        { "wrong rate given: only noise comes back", B38400, 9600, VehicleLink::VL_NOT_IDENTIFIED },
        { "rate detection does not try", B57600, AdapterAddress::AUTO_BAUD, VehicleLink::VL_NO_ANSWER },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        SimTerminal sim(atSpeed(row.adapterSpeed));
        ASSERT_FALSE(sim.path().empty());
        ObdProxy proxy;
        VehicleLink link(&proxy);
        ASSERT_EQ(row.expected, link.open(AdapterAddress::serial(sim.path(), row.baud)));
        if (row.expected != VehicleLink::VL_OK)
            continue;
        // Too late to give up: the open link must go on working.
        link.cancel();
        EXPECT_FALSE(link.isCancelled());

        StoredTroubleCodes stored;
        std::unique_ptr<PowertrainParameter> coolant(ParameterFactory::create(0x05));
        ASSERT_EQ(ER_OK, ObdTransporter().execute(&proxy, &stored));
        ASSERT_EQ(ER_OK, ObdTransporter().execute(&proxy, coolant.get()));
        const ElmSim::Profile& truth = sim.server().profile();
        for (const ElmSim::EcuProfile& profileEcu : truth.ecus) {
            const Ecu ecu(profileEcu.id, link.scantool()->getProtocol(), "");
            std::vector<Dtc> codes;
            ASSERT_TRUE(stored.getDtcs(ecu, codes));
            std::set<std::string> read;
            for (const Dtc& code : codes)
                read.insert(code.getCode());
            EXPECT_EQ(std::set<std::string>(profileEcu.storedDtcs.begin(), profileEcu.storedDtcs.end()), read);
            if (!profileEcu.supportsPid(0x01, 0x05))
                continue;
            std::vector<float> values;
            dynamic_cast<const MeasurableParameter&>(*coolant).getValues(ecu, US_METRIC, values);
            ASSERT_FALSE(values.empty());
            EXPECT_NEAR(truth.physicalValue(profileEcu.id, 0x05, 0.0), values[0], 1.0);
        }
        link.close();
        EXPECT_FALSE(link.isOpen());
    }
}

TEST(ConnectBound, AConnectNobodyAnswersEndsAsNoAnswerLongBeforeTheKernelGivesUp)
{
    FullListener listener;
    ASSERT_NE(0u, listener.port);
    Opening opening(AdapterAddress::tcp("127.0.0.1", listener.port));
    // The kernel's own SYN retries would take over two minutes.
    ASSERT_TRUE(waitFor([&] { return opening.done.load(); }));
    EXPECT_EQ(VehicleLink::VL_NO_ANSWER, opening.status);
    EXPECT_FALSE(opening.link.isOpen());
}

TEST(CancelOpening, EndsTheOpeningAtAnyStep)
{
    ElmSim::ServerOptions slowReset = SimLink::quickOptions("can11");
    slowReset.resetDelayMs = 3000;
    ElmSim::ServerOptions slowSearch = SimLink::quickOptions("can11");
    slowSearch.searchDelayMs = 4000;
    const struct
    {
        const char* name;
        const char* step;
        speed_t adapterSpeed;
        ElmSim::ServerOptions options;
        Evidence evidence;
    } rows[] = {
        { "while the connect waits for an answer", "Connecting", 0, ElmSim::ServerOptions(), CONNECT_GIVEN_UP },
        { "while the serial rate is detected", "Connecting", B57600, SimLink::quickOptions("can11"),
          CONNECT_GIVEN_UP },
        // The listener is not told of a link the reset drops: a clone may do that.
        { "while the adapter resets", "Identifying adapter", B38400, slowReset, STATUS_ONLY },
        { "while the protocol is searched", "Discovering vehicle", B38400, slowSearch, LINK_DROPPED },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ElmSim::ServerOptions options = row.options;
        options.lineSpeed = row.adapterSpeed;
        FullListener listener;
        std::unique_ptr<SimTerminal> sim(row.adapterSpeed ? new SimTerminal(options) : nullptr);
        const AdapterAddress address = sim ? AdapterAddress::serial(sim->path(), AdapterAddress::AUTO_BAUD)
                                           : AdapterAddress::tcp("127.0.0.1", listener.port);
        Opening opening(address);
        ASSERT_TRUE(waitFor([&] { return opening.reached(row.step) || opening.done; }));
        opening.link.cancel();
        ASSERT_TRUE(waitFor([&] { return opening.done.load(); }));
        EXPECT_EQ(VehicleLink::VL_CANCELLED, opening.status);
        EXPECT_FALSE(opening.link.isOpen());
        if (row.evidence == LINK_DROPPED) {
            EXPECT_EQ(1, opening.disconnects.load());
        }
        if (row.evidence == CONNECT_GIVEN_UP) {
            EXPECT_EQ(std::string(std::strerror(ECANCELED)), opening.link.errorString());
        }
        EXPECT_EQ(VehicleLink::VL_CANCELLED, opening.link.open(address));
    }
}

TEST(AdapterAddressText, ParsesWhatItPrintsAndRejectsTheRest)
{
    const struct
    {
        const char* name;
        const char* text;
        AdapterAddress::Kind kind;   // AK_NONE: rejected
    } rows[] = {
        { "Wi-Fi adapter", "tcp:192.168.0.10:35000", AdapterAddress::AK_TCP },
        { "Wi-Fi adapter by host name", "tcp:obd.local:35000", AdapterAddress::AK_TCP },
        { "Bluetooth adapter", "bt:00:1D:A5:00:12:34", AdapterAddress::AK_BLUETOOTH },
        { "USB adapter", "serial:/dev/ttyUSB0@38400", AdapterAddress::AK_SERIAL },
        { "bound Bluetooth adapter, rate detected", "serial:/dev/rfcomm0@auto", AdapterAddress::AK_SERIAL },
        { "TCP without a port", "tcp:192.168.0.10", AdapterAddress::AK_NONE },
        { "TCP port out of range", "tcp:192.168.0.10:70000", AdapterAddress::AK_NONE },
        { "Bluetooth address one byte short", "bt:00:1D:A5:00:12", AdapterAddress::AK_NONE },
        { "Bluetooth address not hex", "bt:00:1D:A5:00:12:GG", AdapterAddress::AK_NONE },
        { "serial rate a terminal cannot take", "serial:/dev/ttyUSB0@12345", AdapterAddress::AK_NONE },
        { "serial without a device", "serial:@38400", AdapterAddress::AK_NONE },
        { "no kind", "/dev/ttyUSB0", AdapterAddress::AK_NONE },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        AdapterAddress address = AdapterAddress::tcp("untouched", 1);
        ASSERT_EQ(row.kind != AdapterAddress::AK_NONE, AdapterAddress::parse(row.text, address));
        if (row.kind == AdapterAddress::AK_NONE) {
            EXPECT_EQ(AdapterAddress::tcp("untouched", 1), address);
            continue;
        }
        EXPECT_EQ(row.kind, address.kind());
        EXPECT_EQ(row.text, address.toString());
    }
    AdapterAddress plain;
    ASSERT_TRUE(AdapterAddress::parse("serial:/dev/ttyACM0", plain));
    EXPECT_EQ(AdapterAddress::serial("/dev/ttyACM0", 38400), plain);
}
