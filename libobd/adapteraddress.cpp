#include "adapteraddress.h"

#include "serialbus.h"

#include <cctype>

namespace Obd {

namespace {

const char* const TCP_PREFIX = "tcp:";
const char* const BLUETOOTH_PREFIX = "bt:";
const char* const SERIAL_PREFIX = "serial:";
const char* const AUTO = "auto";

bool startsWith(const std::string& text, const char* prefix, std::string& rest)
{
    const std::string p(prefix);
    if (text.compare(0, p.size(), p) != 0)
        return false;
    rest = text.substr(p.size());
    return true;
}

bool decimal(const std::string& text, unsigned long maximum, unsigned int& value)
{
    if (text.empty() || text.size() > 7)
        return false;
    unsigned long parsed = 0;
    for (char c : text) {
        if (!std::isdigit(static_cast<unsigned char>(c)))
            return false;
        parsed = parsed * 10 + static_cast<unsigned long>(c - '0');
    }
    if (parsed == 0 || parsed > maximum)
        return false;
    value = static_cast<unsigned int>(parsed);
    return true;
}

// Six pairs of hex digits joined by colons.
bool isDeviceAddress(const std::string& text)
{
    if (text.size() != 17)
        return false;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool colon = i % 3 == 2;
        if (colon ? text[i] != ':' : !std::isxdigit(static_cast<unsigned char>(text[i])))
            return false;
    }
    return true;
}

} // namespace

AdapterAddress::AdapterAddress()
    : m_kind(AK_NONE)
    , m_port(0)
    , m_baud(DEFAULT_BAUD)
{
}

AdapterAddress AdapterAddress::tcp(const std::string& host, unsigned int port)
{
    AdapterAddress address;
    address.m_kind = AK_TCP;
    address.m_location = host;
    address.m_port = port;
    return address;
}

AdapterAddress AdapterAddress::bluetooth(const std::string& deviceAddress)
{
    AdapterAddress address;
    address.m_kind = AK_BLUETOOTH;
    address.m_location = deviceAddress;
    return address;
}

AdapterAddress AdapterAddress::serial(const std::string& device, unsigned int baud)
{
    AdapterAddress address;
    address.m_kind = AK_SERIAL;
    address.m_location = device;
    address.m_baud = baud;
    return address;
}

bool AdapterAddress::parseBaud(const std::string& text, unsigned int& baud)
{
    if (text == AUTO) {
        baud = AUTO_BAUD;
        return true;
    }
    unsigned int value = 0;
    if (!decimal(text, 4000000, value) || !SerialBus::supportsBaud(value))
        return false;
    baud = value;
    return true;
}

bool AdapterAddress::parse(const std::string& text, AdapterAddress& address)
{
    std::string rest;
    AdapterAddress parsed;
    if (startsWith(text, TCP_PREFIX, rest)) {
        const size_t colon = rest.rfind(':');
        unsigned int port = 0;
        if (colon == std::string::npos || !decimal(rest.substr(colon + 1), 65535, port))
            return false;
        parsed = tcp(rest.substr(0, colon), port);
    } else if (startsWith(text, BLUETOOTH_PREFIX, rest)) {
        parsed = bluetooth(rest);
    } else if (startsWith(text, SERIAL_PREFIX, rest)) {
        const size_t at = rest.rfind('@');
        unsigned int baud = DEFAULT_BAUD;
        if (at != std::string::npos && !parseBaud(rest.substr(at + 1), baud))
            return false;
        parsed = serial(rest.substr(0, at), baud);
    }
    if (!parsed.isValid())
        return false;
    address = parsed;
    return true;
}

std::string AdapterAddress::toString() const
{
    switch (m_kind) {
    case AK_TCP:
        return TCP_PREFIX + m_location + ":" + std::to_string(m_port);
    case AK_BLUETOOTH:
        return BLUETOOTH_PREFIX + m_location;
    case AK_SERIAL:
        return SERIAL_PREFIX + m_location + "@"
               + (m_baud == AUTO_BAUD ? std::string(AUTO) : std::to_string(m_baud));
    default:
        return std::string();
    }
}

bool AdapterAddress::isValid() const
{
    switch (m_kind) {
    case AK_TCP:
        return !m_location.empty() && m_location.find(':') == std::string::npos && m_port >= 1
               && m_port <= 65535;
    case AK_BLUETOOTH:
        return isDeviceAddress(m_location);
    case AK_SERIAL:
        return !m_location.empty() && (m_baud == AUTO_BAUD || SerialBus::supportsBaud(m_baud));
    default:
        return false;
    }
}

bool AdapterAddress::operator==(const AdapterAddress& other) const
{
    return m_kind == other.m_kind && m_location == other.m_location && m_port == other.m_port
           && m_baud == other.m_baud;
}

} // namespace Obd
