#ifndef ELMSIM_ADAPTERLINK_H
#define ELMSIM_ADAPTERLINK_H

#include <string>

namespace ElmSim {

// The byte link an adapter talks through: the serving thread's socket.
class AdapterLink
{
public:
    virtual ~AdapterLink() = default;
    virtual void send(const std::string& text) = 0;
    // Waits ms milliseconds; false when interrupted (stop or drop).
    virtual bool pause(unsigned int ms) = 0;
};

} // namespace ElmSim

#endif
