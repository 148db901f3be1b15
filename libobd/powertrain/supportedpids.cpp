#include "supportedpids.h"
#include "ecu.h"
#include "sensorinfo.h"
#include "trlog.h"

#include <cstdint>

namespace Obd {

SupportedPids::SupportedPids(unsigned char mode, unsigned char pid)
    : PowertrainParameter(mode)
    , m_pid(pid)
    , m_sensorInfo(new SensorInfo(std::string(), 0))
{
}

SupportedPids::~SupportedPids()
{
}

// Discovery waits for every ECU, and the first request may be the
// adapter's protocol search.
unsigned int SupportedPids::getTimeout() const
{
    return 10000;
}

unsigned char SupportedPids::getPid() const
{
    return m_pid;
}

std::string SupportedPids::getName() const
{
    return std::string();
}

void SupportedPids::getSensorInfos(std::vector<SensorInfo*>& list) const
{
    list.push_back(m_sensorInfo.get());
}

void SupportedPids::getFormattedValues(const Ecu&, UnitSystem, std::vector<std::string>&) const
{
}

//  header (removed)   data
//  [41][00]          [A][B][C][D]     A bit 7 = offset 1 ... D bit 0 = offset 32
bool SupportedPids::decode(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (data.size() != 4) {
        OBD_ERROR << "Invalid length";
        return false;
    }
    std::vector<unsigned char> list;
    decodeBitmap(data[0], data[1], data[2], data[3], list);
    m_supported[ecuId] = list;
    return true;
}

bool SupportedPids::getSupported(const Ecu& ecu, std::vector<unsigned char>& list) const
{
    auto it = m_supported.find(ecu.getId());
    if (it == m_supported.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return false;
    }
    list = it->second;
    return true;
}

void SupportedPids::getEcuIds(std::vector<unsigned int>& list) const
{
    for (const auto& entry : m_supported)
        list.push_back(entry.first);
}

void SupportedPids::decodeBitmap(unsigned char b0, unsigned char b1, unsigned char b2,
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
