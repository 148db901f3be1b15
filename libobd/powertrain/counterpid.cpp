#include "counterpid.h"
#include "ecu.h"
#include "trlog.h"
#include "valueformater.h"

namespace Obd {

CounterPid::CounterPid(unsigned char pid, unsigned char mode)
    : CataloguePid(pid, mode)
{
}

CounterPid::~CounterPid()
{
}

bool CounterPid::decode(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (!m_descriptor.acceptsLength(data.size()))
        return false;
    m_values[ecuId] = static_cast<unsigned int>(m_descriptor.row().values[0].formula(data));
    return true;
}

unsigned int CounterPid::getValue(const Ecu& ecu) const
{
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return 0;
    }
    return it->second;
}

void CounterPid::getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                                    std::vector<std::string>& list) const
{
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return;
    }
    static const ValueFormater wholeNumber(ValueFormater::VT_UNSIGNED, 0, 0);
    double value = m_descriptor.row().values[0].convert(unitSystem, it->second);
    list.push_back(wholeNumber.format(unitSystem, static_cast<float>(value)));
}

} // namespace Obd
