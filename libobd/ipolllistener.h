#ifndef OBD_IPOLLLISTENER_H
#define OBD_IPOLLLISTENER_H

namespace Obd {

class ObdParameter;

// Told by the message poller that a parameter holds new values.
class IPollListener
{
public:
    enum { CODE_UPDATED = 1 };

    virtual ~IPollListener() {}
    // Called on the poller's thread with its table locked: must not call
    // back into the poller's addPid or removePid.
    virtual void onPolled(int code, ObdParameter* parameter) = 0;
};

} // namespace Obd

#endif
