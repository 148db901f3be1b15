#ifndef OBD_UNITSCALINGFACTORY_H
#define OBD_UNITSCALINGFACTORY_H

#include "unitsystem.h"

namespace Obd {

class IUnitScaling;

// The unit-and-scaling ids of service 06 (SAE J1979 appendix E).
class UnitScalingFactory
{
public:
    // A new scaling owned by the caller, or null (and "Invalid scaling ID: "
    // logged) for an id in neither table. An id without an imperial row is
    // scaled as in metric.
    static IUnitScaling* create(unsigned char scalingId, UnitSystem system);
    static bool isKnown(unsigned char scalingId, UnitSystem system);

    // Number of rows of each table.
    static unsigned int metricRowCount();
    static unsigned int imperialRowCount();
};

} // namespace Obd

#endif
