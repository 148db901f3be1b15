#include "supportedlists.h"
#include "ecu.h"
#include "trlog.h"

#include <cstdint>

namespace Obd {

SupportedLists::SupportedLists()
{
}

SupportedLists::~SupportedLists()
{
}

void SupportedLists::store(unsigned int ecuId, unsigned char b0, unsigned char b1,
                           unsigned char b2, unsigned char b3)
{
    std::vector<unsigned char> list;
    decodeBitmap(b0, b1, b2, b3, list);
    m_lists[ecuId] = list;
}

bool SupportedLists::get(const Ecu& ecu, std::vector<unsigned char>& list) const
{
    auto it = m_lists.find(ecu.getId());
    if (it == m_lists.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return false;
    }
    list = it->second;
    return true;
}

void SupportedLists::getEcuIds(std::vector<unsigned int>& list) const
{
    for (const auto& entry : m_lists)
        list.push_back(entry.first);
}

void SupportedLists::clear()
{
    m_lists.clear();
}

void SupportedLists::decodeBitmap(unsigned char b0, unsigned char b1, unsigned char b2,
                                  unsigned char b3, std::vector<unsigned char>& list)
{
    const uint32_t value = (static_cast<uint32_t>(b0) << 24) | (static_cast<uint32_t>(b1) << 16)
        | (static_cast<uint32_t>(b2) << 8) | b3;
    for (unsigned int n = 1; n <= 32; ++n) {
        if (value & (1u << (32 - n)))
            list.push_back(static_cast<unsigned char>(n));
    }
}

} // namespace Obd
