#include "bluetoothbus.h"

#include <cassert>
#include <cstring>

namespace Obd {

BluetoothBus::BluetoothBus()
{
    std::memset(&address_, 0, sizeof(address_));
}

bool BluetoothBus::init(const std::string& address, unsigned int channel)
{
    assert(!isOpen() && "!isOpen()");

    // str2ba leaves a malformed text as some address; the connect then fails.
    str2ba(address.c_str(), &address_.rc_bdaddr);
    // Only the low byte survives: the serial-port class 0x1101 becomes channel 1,
    // which is where the adapters listen.
    address_.rc_channel = static_cast<uint8_t>(channel & 0xFF);
    address_.rc_family = AF_BLUETOOTH;
    return true;
}

IMessageBus::OpenStatus BluetoothBus::open()
{
    assert(!isOpen() && "!isOpen()");
    return connectSocket(AF_BLUETOOTH, BTPROTO_RFCOMM,
                         reinterpret_cast<const struct sockaddr*>(&address_), sizeof(address_),
                         CONNECT_TIMEOUT_MS);
}

} // namespace Obd
