#ifndef OBD_BLUETOOTHBUS_H
#define OBD_BLUETOOTHBUS_H

#include "descriptorbus.h"

#include <bluetooth/bluetooth.h>
#include <bluetooth/rfcomm.h>

#include <string>

namespace Obd {

// The Bluetooth bus: a BlueZ RFCOMM socket to the adapter's device address.
class BluetoothBus : public DescriptorBus
{
public:
    // Paging a device that is off or out of range takes longer than a TCP connect.
    static constexpr int CONNECT_TIMEOUT_MS = 10000;

    BluetoothBus();

    OpenStatus open() override;
    // Only while closed. address is "XX:XX:XX:XX:XX:XX"; only the low byte
    // of channel is used.
    bool init(const std::string& address, unsigned int channel);

private:
    struct sockaddr_rc address_;
};

} // namespace Obd

#endif
