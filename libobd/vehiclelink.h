#ifndef OBD_VEHICLELINK_H
#define OBD_VEHICLELINK_H

#include "adapteraddress.h"
#include "linkopener.h"

#include <atomic>
#include <memory>
#include <string>

namespace Obd {

class BusInterrupt;
class IConnection;
class IDisconnectListener;
class IObdProxy;
class IScantool;

// The link to a vehicle through one adapter: the bus its address calls for,
// the connection and the scan tool, opened by the library's one dialogue and
// closed again by the link itself. The proxy stays the caller's.
class VehicleLink
{
public:
    enum Status {
        VL_OK = 0,
        VL_BAD_ADDRESS,          // not an address, or a host name that does not resolve
        VL_NO_ANSWER,            // nothing answered the connect within its bound
        VL_REFUSED,              // the host is there, the adapter's port is not
        VL_CONNECT_FAILED,       // any other connect failure; errorString() says which
        VL_NOT_IDENTIFIED,       // the adapter did not identify itself
        VL_NOT_INITIALIZED,      // the adapter refused its set-up
        VL_VEHICLE_NOT_REACHED,  // discovery found no ECU, or the link went halfway
        VL_CANCELLED             // given up by cancel()
    };

    // Where the adapters' serial-port service listens (the low byte of the
    // service class 0x1101).
    static constexpr unsigned int RFCOMM_CHANNEL = 1;

    static const char* statusName(Status status);
    // The wait before reopening attempt n (0 the first) after a lost link:
    // 1, 2, 4, 8 s, then every 15 s.
    static int reconnectDelayMs(int attempt);

    // The listener hears of a link lost once it is open (and of one lost while opening).
    explicit VehicleLink(IObdProxy* proxy, IDisconnectListener* listener = nullptr);
    ~VehicleLink();

    void setProgress(const LinkOpener::Progress& progress);
    // Never send ATZ: open with a warm start. Adapters found to drop the link
    // on ATZ are opened so anyway for the rest of the process.
    void setNoReset(bool noReset) { m_noReset = noReset; }
    static bool dropsLinkOnReset(const AdapterAddress& address);
    // Blocks through the whole opening; an open link stays as it is.
    Status open(const AdapterAddress& address);
    // Any thread, async-signal-safe: an opening under way ends with
    // VL_CANCELLED as soon as its current wait does, and so does every later
    // open(). A link already open is left alone.
    void cancel();
    bool isCancelled() const { return m_state == LS_CANCELLED; }
    // Resets the adapter if it is still there, then closes. The caller makes
    // sure no exchange is running.
    void close();

    bool isOpen() const { return m_connection != nullptr; }
    IConnection* connection() const { return m_connection; }
    IScantool* scantool() const { return m_scantool; }
    IObdProxy* proxy() const { return m_proxy; }
    const AdapterAddress& address() const { return m_address; }
    // The system's words for the last connect failure ("Operation canceled"
    // when cancel() ended the connect).
    std::string errorString() const { return m_error; }

private:
    VehicleLink(const VehicleLink&) = delete;
    VehicleLink& operator=(const VehicleLink&) = delete;

    IObdProxy* m_proxy;
    IDisconnectListener* m_listener;
    LinkOpener::Progress m_progress;
    bool m_noReset = false;
    AdapterAddress m_address;
    std::shared_ptr<BusInterrupt> m_interrupt;
    enum State { LS_CLOSED, LS_OPEN, LS_CANCELLED };
    std::atomic<int> m_state;
    IConnection* m_connection;
    IScantool* m_scantool;
    std::string m_error;
};

} // namespace Obd

#endif
