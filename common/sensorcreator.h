#ifndef OBD_SENSORCREATOR_H
#define OBD_SENSORCREATOR_H

namespace Obd {

class Ecu;
class NumericSensor;
class Sensor;

// Makes sensors for a live-data PID through the parameter catalogue.
class SensorCreator
{
public:
    // Null when the catalogue has no parameter for the PID.
    static Sensor* createSensor(const Ecu& ecu, unsigned char pid);
    // Null when the catalogue has no parameter for the PID, or it yields no
    // numbers.
    static NumericSensor* createNumericSensor(const Ecu& ecu, unsigned char pid);
};

} // namespace Obd

#endif
