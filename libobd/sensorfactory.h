#ifndef OBD_SENSORFACTORY_H
#define OBD_SENSORFACTORY_H

namespace Obd {

class ObdParameter;

// Makes the parameter to poll for a live-data PID.
class SensorFactory
{
public:
    virtual ~SensorFactory();
    // A new parameter owned by the caller, or none for an unknown PID.
    virtual ObdParameter* createParameter(unsigned char pid) const;
};

} // namespace Obd

#endif
