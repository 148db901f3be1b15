#include "numericpid.h"
#include "ecu.h"
#include "trlog.h"

namespace Obd {

NumericPid::NumericPid(unsigned char pid, unsigned char mode)
    : MeasurableParameter(mode)
    , m_descriptor(pid)
{
}

NumericPid::~NumericPid()
{
}

unsigned char NumericPid::getPid() const
{
    return m_descriptor.pid();
}

std::string NumericPid::getName() const
{
    return m_descriptor.name();
}

void NumericPid::getSensorInfos(std::vector<SensorInfo*>& list) const
{
    m_descriptor.sensorInfos(list);
}

void NumericPid::getFormatters(std::vector<ValueFormaterPtr>& list) const
{
    m_descriptor.formatters(list);
}

bool NumericPid::decode(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (!m_descriptor.acceptsLength(data.size()))
        return false;
    const PidRow& row = m_descriptor.row();
    Values values = {};
    for (unsigned int i = 0; i < row.valueCount; ++i)
        values[i] = row.values[i].formula(data);
    m_values[ecuId] = values;
    return true;
}

const NumericPid::Values* NumericPid::find(const Ecu& ecu) const
{
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return nullptr;
    }
    return &it->second;
}

void NumericPid::getValues(const Ecu& ecu, UnitSystem unitSystem, std::vector<float>& list) const
{
    const Values* values = find(ecu);
    if (!values)
        return;
    const PidRow& row = m_descriptor.row();
    for (unsigned int i = 0; i < row.valueCount; ++i)
        list.push_back(static_cast<float>(row.values[i].convert(unitSystem, (*values)[i])));
}

void NumericPid::getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                                    std::vector<std::string>& list) const
{
    std::vector<float> values;
    getValues(ecu, unitSystem, values);
    for (unsigned int i = 0; i < values.size(); ++i) {
        ValueFormaterPtr formatter = m_descriptor.formatter(i);
        list.push_back(formatter ? formatter->format(unitSystem, values[i]) : std::string());
    }
}

float NumericPid::getValue(const Ecu& ecu, UnitSystem unitSystem, unsigned int index) const
{
    const Values* values = find(ecu);
    if (!values || index >= m_descriptor.row().valueCount)
        return 0.0f;
    return static_cast<float>(m_descriptor.row().values[index].convert(unitSystem, (*values)[index]));
}

} // namespace Obd
