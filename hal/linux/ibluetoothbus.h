#ifndef OBD_IBLUETOOTHBUS_H
#define OBD_IBLUETOOTHBUS_H

#include "imessagebus.h"

#include <string>

namespace Obd {

// A message bus over a Bluetooth RFCOMM stream.
class IBluetoothBus : public IMessageBus
{
public:
    ~IBluetoothBus() override {}
    // Only while closed. address is "XX:XX:XX:XX:XX:XX"; only the low byte
    // of channel is used.
    virtual bool init(const std::string& address, unsigned int channel) = 0;
};

} // namespace Obd

#endif
