#include "session.h"
#include "iconnection.h"
#include "options.h"
#include "trlog.h"

#include <chrono>
#include <thread>

namespace Cli {

namespace {

// The session whose link is being opened, for a signal handler to give it up.
std::atomic<Session*> opening(nullptr);

std::string where(const Obd::AdapterAddress& address)
{
    if (address.kind() == Obd::AdapterAddress::AK_TCP)
        return address.location() + ":" + std::to_string(address.port());
    return address.location();
}

} // namespace

Session::Session()
    : m_link(&m_proxy, this)
    , m_open(false)
    , m_lost(false)
    , m_lostWhileOpening(false)
{
}

Session::~Session()
{
    close();
}

void Session::onDisconnected()
{
    if (m_open)
        m_lost = true;
    else
        m_lostWhileOpening = true;
}

void Session::cancelOpening()
{
    Session* session = opening.load();
    if (session)
        session->m_link.cancel();
}

Session::Status Session::open(const Options& options,
                              const std::function<void(const std::string&)>& progress,
                              std::string& why)
{
    const Obd::AdapterAddress address = options.address();
    m_link.setProgress(progress);
    m_link.setNoReset(options.noReset);
    m_lost = false;
    m_lostWhileOpening = false;
    opening = this;
    const Obd::VehicleLink::Status result = m_link.open(address);
    opening = nullptr;
    // Blaming the adapter or the car for a link that went away misleads the user.
    const bool inDialogue = result == Obd::VehicleLink::VL_NOT_IDENTIFIED
                            || result == Obd::VehicleLink::VL_NOT_INITIALIZED
                            || result == Obd::VehicleLink::VL_VEHICLE_NOT_REACHED;
    if (inDialogue && m_lostWhileOpening) {
        why = "the link to the adapter was lost while opening it";
        return result == Obd::VehicleLink::VL_VEHICLE_NOT_REACHED ? SS_NOT_REACHED
                                                                  : SS_NOT_IDENTIFIED;
    }
    // The system's reason helps with a device path (missing, no permission).
    const std::string detail = address.kind() == Obd::AdapterAddress::AK_SERIAL
                                   ? " (" + m_link.errorString() + ")"
                                   : std::string();
    switch (result) {
    case Obd::VehicleLink::VL_OK:
        m_open = true;
        return SS_OK;
    case Obd::VehicleLink::VL_BAD_ADDRESS:
        why = address.kind() == Obd::AdapterAddress::AK_TCP ? "cannot resolve host " + options.host
                                                            : m_link.errorString();
        return SS_CANNOT_CONNECT;
    case Obd::VehicleLink::VL_NO_ANSWER:
        if (address.kind() == Obd::AdapterAddress::AK_SERIAL
            && address.baud() == Obd::AdapterAddress::AUTO_BAUD) {
            why = "no adapter prompt on " + address.location() + " at any baud rate";
            return SS_CANNOT_CONNECT;
        }
        why = "cannot connect to the adapter at " + where(address) + detail;
        return SS_CANNOT_CONNECT;
    case Obd::VehicleLink::VL_REFUSED:
    case Obd::VehicleLink::VL_CONNECT_FAILED:
        why = "cannot connect to the adapter at " + where(address) + detail;
        return SS_CANNOT_CONNECT;
    case Obd::VehicleLink::VL_NOT_IDENTIFIED:
        why = "the adapter did not identify itself as an ELM327";
        return SS_NOT_IDENTIFIED;
    case Obd::VehicleLink::VL_NOT_INITIALIZED:
        why = "the adapter could not be initialised";
        return SS_NOT_IDENTIFIED;
    case Obd::VehicleLink::VL_CANCELLED:
        why = "the opening was cancelled";
        return SS_CANCELLED;
    case Obd::VehicleLink::VL_VEHICLE_NOT_REACHED:
    default:
        why = "the vehicle did not answer (is the ignition on?)";
        return SS_NOT_REACHED;
    }
}

bool Session::reopen(const Options& options, const std::function<bool()>& stop)
{
    m_open = false;
    m_link.close();
    for (int attempt = 0; !stop(); ++attempt) {
        const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(Obd::VehicleLink::reconnectDelayMs(attempt));
        while (!stop() && std::chrono::steady_clock::now() < until)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        if (stop())
            break;
        std::string why;
        const Status status = open(options, [](const std::string&) {}, why);
        if (status == SS_OK)
            return true;
        OBD_INFO << "reopening attempt " << attempt + 1 << ": " << why;
        if (status == SS_CANCELLED)
            break;
        m_link.close();
    }
    return false;
}

void Session::close()
{
    if (!m_link.isOpen())
        return;
    m_open = false;
    m_link.close();
}

} // namespace Cli
