#ifndef OBD_ADAPTERADDRESS_H
#define OBD_ADAPTERADDRESS_H

#include <string>

namespace Obd {

// Where an adapter is reached, and its text form:
//   "tcp:192.168.0.10:35000", "bt:00:1D:A5:00:12:34",
//   "serial:/dev/ttyUSB0@38400", "serial:/dev/rfcomm0@auto".
class AdapterAddress
{
public:
    enum Kind { AK_NONE = 0, AK_TCP, AK_BLUETOOTH, AK_SERIAL };

    static constexpr unsigned int DEFAULT_BAUD = 38400;
    // The serial rate is detected when the link opens.
    static constexpr unsigned int AUTO_BAUD = 0;

    AdapterAddress();
    static AdapterAddress tcp(const std::string& host, unsigned int port);
    static AdapterAddress bluetooth(const std::string& address);
    static AdapterAddress serial(const std::string& device, unsigned int baud = DEFAULT_BAUD);

    // False, leaving address alone, for a text that is no address.
    static bool parse(const std::string& text, AdapterAddress& address);
    // A decimal rate the serial bus supports, or "auto".
    static bool parseBaud(const std::string& text, unsigned int& baud);
    std::string toString() const;

    Kind kind() const { return m_kind; }
    // Host name or IPv4 address, Bluetooth device address, or device path.
    const std::string& location() const { return m_location; }
    unsigned int port() const { return m_port; }
    unsigned int baud() const { return m_baud; }
    bool isValid() const;

    bool operator==(const AdapterAddress& other) const;

private:
    Kind m_kind;
    std::string m_location;
    unsigned int m_port;
    unsigned int m_baud;
};

} // namespace Obd

#endif
