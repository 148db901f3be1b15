#ifndef OBD_CATALOGUEPID_H
#define OBD_CATALOGUEPID_H

#include "piddescriptor.h"
#include "powertrainparameter.h"

namespace Obd {

// A PID without numeric values (enumerated states, counters, trouble-code
// and monitor records): PID, name and descriptors come from its catalogue
// row; the subclass decodes and formats.
class CataloguePid : public PowertrainParameter
{
public:
    ~CataloguePid() override;

    unsigned char getPid() const override;
    using PowertrainParameter::getName;
    std::string getName() const override;
    void getSensorInfos(std::vector<SensorInfo*>& list) const override;

protected:
    CataloguePid(unsigned char pid, unsigned char mode);

    PidDescriptor m_descriptor;
};

} // namespace Obd

#endif
