#ifndef OBD_BLUETOOTHBUS_H
#define OBD_BLUETOOTHBUS_H

#include "ibluetoothbus.h"

#include <bluetooth/bluetooth.h>
#include <bluetooth/rfcomm.h>

#include <string>
#include <vector>

namespace Obd {

// The Bluetooth bus: a BlueZ RFCOMM socket to the adapter's device address.
// One thread reads while another writes; nothing here is locked.
class BluetoothBus : public IBluetoothBus
{
public:
    BluetoothBus();
    ~BluetoothBus() override;

    OpenStatus open() override;
    bool close() override;
    // Blocks up to the socket's 500 ms receive time-out; at most 256 bytes.
    ReadStatus read(std::vector<unsigned char>& buffer) override;
    // No writability wait and no time-out: never WS_TIMEOUT.
    WriteStatus write(const std::vector<unsigned char>& data) override;
    std::string errorString() const override;
    bool init(const std::string& address, unsigned int channel) override;

private:
    BluetoothBus(const BluetoothBus&) = delete;
    BluetoothBus& operator=(const BluetoothBus&) = delete;

    int socket_;
    struct sockaddr_rc address_;
    int lastError_;
};

} // namespace Obd

#endif
