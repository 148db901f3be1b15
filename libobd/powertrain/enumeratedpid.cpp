#include "enumeratedpid.h"
#include "ecu.h"
#include "trlog.h"

namespace Obd {

EnumeratedPid::EnumeratedPid(unsigned char pid, unsigned char mode)
    : CataloguePid(pid, mode)
{
}

EnumeratedPid::~EnumeratedPid()
{
}

bool EnumeratedPid::decode(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (!m_descriptor.acceptsLength(data.size()))
        return false;
    m_values[ecuId] = codeOf(data[0]);
    return true;
}

unsigned int EnumeratedPid::code(const Ecu& ecu) const
{
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return 0;
    }
    return it->second;
}

void EnumeratedPid::getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                                       std::vector<std::string>& list) const
{
    (void)unitSystem;
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return;
    }
    list.push_back(textOf(it->second));
}

} // namespace Obd
