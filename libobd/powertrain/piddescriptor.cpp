#include "piddescriptor.h"
#include "ecu.h"
#include "sensorinfo.h"
#include "valueformater.h"

#include <cassert>

namespace Obd {

PidDescriptor::PidDescriptor(unsigned char pid)
    : m_row(PidTable::find(pid))
{
    assert(m_row != 0 && "PidDescriptor: m_row != 0");
    const std::string pidName = name();
    for (unsigned int i = 0; i < m_row->valueCount; ++i) {
        const PidValue& value = m_row->values[i];
        // Kind 1 marks a value with a formatter, 0 the text-only ones.
        SensorInfo* info = new SensorInfo(value.name ? value.name : pidName, value.hasFormatter() ? 1 : 0);
        info->addInfo(US_METRIC, value.unit(US_METRIC), value.rangeMinimum(US_METRIC), value.rangeMaximum(US_METRIC));
        info->addInfo(US_IMPERIAL, value.unit(US_IMPERIAL), value.rangeMinimum(US_IMPERIAL),
                      value.rangeMaximum(US_IMPERIAL));
        m_infos.push_back(info);
        ValueFormaterPtr formatter;
        if (value.hasFormatter()) {
            formatter = std::make_shared<ValueFormater>(static_cast<unsigned int>(value.format.valueType),
                                                        value.format.metricDecimals,
                                                        value.format.imperialDecimals);
        }
        m_formatters.push_back(formatter);
    }
}

PidDescriptor::~PidDescriptor()
{
    for (SensorInfo* info : m_infos)
        delete info;
}

std::string PidDescriptor::name() const
{
    return m_row->displayName(1);
}

std::string PidDescriptor::name(const Ecu& ecu) const
{
    return m_row->displayName(ecu.getOxygenSensorLayout());
}

void PidDescriptor::sensorInfos(std::vector<SensorInfo*>& list) const
{
    list.insert(list.end(), m_infos.begin(), m_infos.end());
}

void PidDescriptor::formatters(std::vector<ValueFormaterPtr>& list) const
{
    list.insert(list.end(), m_formatters.begin(), m_formatters.end());
}

ValueFormaterPtr PidDescriptor::formatter(unsigned int index) const
{
    return index < m_formatters.size() ? m_formatters[index] : ValueFormaterPtr();
}

} // namespace Obd
