#ifndef OBD_SERIALBUS_H
#define OBD_SERIALBUS_H

#include "descriptorbus.h"

#include <string>
#include <vector>

namespace Obd {

// A USB adapter, or a Bluetooth one bound to a serial device: a terminal set
// raw, 8 data bits, no parity, one stop bit, no flow control.
class SerialBus : public DescriptorBus
{
public:
    static constexpr unsigned int DEFAULT_BAUD = 38400;
    // Tries the usual rates until the adapter prompts.
    static constexpr unsigned int AUTO_BAUD = 0;
    // How long one rate may take to bring the prompt during detection.
    static constexpr int PROBE_TIMEOUT_MS = 500;

    SerialBus();

    // Only while closed. False for a rate the terminal cannot be set to.
    bool init(const std::string& device, unsigned int baud = DEFAULT_BAUD);

    OpenStatus open() override;
    // The rate in use: the detected one after an automatic opening.
    unsigned int baud() const { return baud_; }

    static bool supportsBaud(unsigned int baud);
    // Factory rate of genuine adapters first, then old clones, then STN chips.
    static const std::vector<unsigned int>& detectionOrder();

private:
    bool setSpeed(unsigned int baud);
    // True when the adapter prompts at the current rate.
    bool prompts();

    std::string device_;
    unsigned int requested_;
    unsigned int baud_;
};

} // namespace Obd

#endif
