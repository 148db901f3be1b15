#include "supportedtids.h"
#include "ecu.h"
#include "trlog.h"

namespace Obd {

SupportedTids::SupportedTids(unsigned char tid, unsigned int sensor)
    : m_tid(tid)
    , m_sensor(sensorByte(sensor))
{
}

SupportedTids::~SupportedTids()
{
}

unsigned char SupportedTids::sensorByte(unsigned int sensor)
{
    // Banks 3 and 4 (locations 8..11) reuse the bits of bank 2.
    static const unsigned char BYTES[] = {0x01, 0x02, 0x04, 0x08, 0x10, 0x20,
                                          0x40, 0x80, 0x10, 0x20, 0x40, 0x80};
    return sensor < sizeof(BYTES) ? BYTES[sensor] : 0x00;
}

unsigned char SupportedTids::getTid() const
{
    return m_tid;
}

unsigned char SupportedTids::getSensorByte() const
{
    return m_sensor;
}

void SupportedTids::clear()
{
    m_supported.clear();
}

void SupportedTids::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x05);
    request.push_back(m_tid);
    request.push_back(m_sensor);
}

void SupportedTids::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x45);
    signature.push_back(m_tid);
    signature.push_back(m_sensor);
}

//  [45][TID][sensor][A][B][C][D]
bool SupportedTids::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (data.size() != 7) {
        OBD_ERROR << "Invalid length";
        return false;
    }
    m_supported.store(ecuId, data[3], data[4], data[5], data[6]);
    return true;
}

bool SupportedTids::getSupported(const Ecu& ecu, std::vector<unsigned char>& list) const
{
    return m_supported.get(ecu, list);
}

void SupportedTids::getEcuIds(std::vector<unsigned int>& list) const
{
    m_supported.getEcuIds(list);
}

} // namespace Obd
