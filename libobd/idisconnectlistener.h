#ifndef OBD_IDISCONNECTLISTENER_H
#define OBD_IDISCONNECTLISTENER_H

namespace Obd {

class IDisconnectListener
{
public:
    virtual ~IDisconnectListener() {}
    // May be called on the connection's read thread.
    virtual void onDisconnected() = 0;
};

} // namespace Obd

#endif
