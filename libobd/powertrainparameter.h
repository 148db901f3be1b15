#ifndef OBD_POWERTRAINPARAMETER_H
#define OBD_POWERTRAINPARAMETER_H

#include "obdparameter.h"
#include "unitsystem.h"

#include <string>
#include <vector>

namespace Obd {

class Ecu;
class SensorInfo;

// A service 01 (live) or 02 (freeze frame) PID; mode 6 where a test
// parameter reuses the layout.
class PowertrainParameter : public ObdParameter
{
public:
    explicit PowertrainParameter(unsigned char mode = 1);
    ~PowertrainParameter() override;

    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    virtual unsigned char getPid() const = 0;
    virtual std::string getName() const = 0;
    // Descriptors are owned by the parameter.
    virtual void getSensorInfos(std::vector<SensorInfo*>& list) const = 0;
    virtual void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                                    std::vector<std::string>& list) const = 0;
    // data: the bytes after the response header.
    virtual bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) = 0;
    // The name as shown for one ECU; only the oxygen-sensor PIDs, whose
    // names follow the ECU's sensor layout, differ from getName().
    virtual std::string getName(const Ecu& ecu) const
    {
        (void)ecu;
        return getName();
    }

    unsigned char getMode() const;
    void setMode(unsigned char mode);

protected:
    unsigned char m_mode;
};

} // namespace Obd

#endif
