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
    m_supported.store(ecuId, data[0], data[1], data[2], data[3]);
    return true;
}

bool SupportedPids::getSupported(const Ecu& ecu, std::vector<unsigned char>& list) const
{
    return m_supported.get(ecu, list);
}

void SupportedPids::getEcuIds(std::vector<unsigned int>& list) const
{
    m_supported.getEcuIds(list);
}


} // namespace Obd
