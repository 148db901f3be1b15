#ifndef OBD_PIDDESCRIPTOR_H
#define OBD_PIDDESCRIPTOR_H

#include "ivalueformater.h"
#include "pidtable.h"

#include <string>
#include <vector>

namespace Obd {

class Ecu;
class SensorInfo;

// What a PID class makes of its catalogue row: the SensorInfo objects
// (owned, one per value) and the value formatters (one per value that has
// formatter arguments).
class PidDescriptor
{
public:
    // pid must be a row of the catalogue.
    explicit PidDescriptor(unsigned char pid);
    ~PidDescriptor();

    const PidRow& row() const { return *m_row; }
    unsigned char pid() const { return m_row->pid; }
    // Oxygen sensors: the name of layout 1.
    std::string name() const;
    std::string name(const Ecu& ecu) const;
    bool acceptsLength(size_t length) const { return m_row->acceptsLength(length); }

    void sensorInfos(std::vector<SensorInfo*>& list) const;
    void formatters(std::vector<ValueFormaterPtr>& list) const;
    // The formatter of value index; empty when that value has none.
    ValueFormaterPtr formatter(unsigned int index) const;

private:
    PidDescriptor(const PidDescriptor&) = delete;
    PidDescriptor& operator=(const PidDescriptor&) = delete;

    const PidRow* m_row;
    std::vector<SensorInfo*> m_infos;
    std::vector<ValueFormaterPtr> m_formatters;
};

} // namespace Obd

#endif
