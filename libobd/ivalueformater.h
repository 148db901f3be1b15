#ifndef OBD_IVALUEFORMATER_H
#define OBD_IVALUEFORMATER_H

#include "unitsystem.h"

#include <memory>
#include <string>

namespace Obd {

class IValueFormater
{
public:
    virtual ~IValueFormater() {}
    virtual std::string format(UnitSystem unitSystem, float value) const = 0;
};

typedef std::shared_ptr<IValueFormater> ValueFormaterPtr;

} // namespace Obd

#endif
