#ifndef OBD_UNITSYSTEM_H
#define OBD_UNITSYSTEM_H

namespace Obd {

enum UnitSystem {
    US_METRIC = 0,
    US_IMPERIAL = 1
};

} // namespace Obd

#endif
