#include "ecu.h"

#include <algorithm>
#include <cstdio>

namespace Obd {

Ecu::Ecu()
    : m_id(0)
    , m_protocol(5)
    , m_obdStandard(0)
{
}

Ecu::Ecu(unsigned int id, unsigned int protocol, const std::string& protocolName)
    : m_id(id)
    , m_protocol(protocol)
    , m_protocolName(protocolName)
    , m_obdStandard(0)
{
}

Ecu::~Ecu()
{
}

unsigned int Ecu::getId() const
{
    return m_id;
}

unsigned int Ecu::getProtocol() const
{
    return m_protocol;
}

std::string Ecu::getProtocolName() const
{
    return m_protocolName;
}

std::vector<unsigned char>* Ecu::listFor(unsigned int service)
{
    switch (service) {
    case 1: return &m_pids01;
    case 2: return &m_pids02;
    case 6: return &m_mids06;
    case 9: return &m_infoTypes09;
    default: return nullptr;
    }
}

const std::vector<unsigned char>* Ecu::listFor(unsigned int service) const
{
    return const_cast<Ecu*>(this)->listFor(service);
}

void Ecu::setSupported(unsigned int service, const std::vector<unsigned char>& list)
{
    if (std::vector<unsigned char>* target = listFor(service))
        target->insert(target->end(), list.begin(), list.end());
}

void Ecu::addSupported(unsigned int service, unsigned char number)
{
    if (std::vector<unsigned char>* target = listFor(service))
        target->push_back(number);
}

bool Ecu::isSupported(unsigned int service, unsigned char number) const
{
    const std::vector<unsigned char>* list = listFor(service);
    return list && std::find(list->begin(), list->end(), number) != list->end();
}

bool Ecu::getSupported(unsigned int service, std::vector<unsigned char>& list) const
{
    const std::vector<unsigned char>* source = listFor(service);
    if (!source)
        return false;
    list = *source;
    return true;
}

void Ecu::setSupportedTids(unsigned int sensor, const std::vector<unsigned char>& list)
{
    std::vector<unsigned char>& target = m_tids05[sensor];
    target.insert(target.end(), list.begin(), list.end());
}

void Ecu::addSupportedTid(unsigned int sensor, unsigned char tid)
{
    m_tids05[sensor].push_back(tid);
}

bool Ecu::getSupportedTids(unsigned int sensor, std::vector<unsigned char>& list) const
{
    auto it = m_tids05.find(sensor);
    if (it == m_tids05.end())
        return false;
    list = it->second;
    return true;
}

std::map<unsigned int, std::vector<unsigned char>> Ecu::getSupportedTids() const
{
    return m_tids05;
}

void Ecu::setOxygenSensors(const std::vector<OxygenSensorLocation>& sensors)
{
    m_oxygenSensors = sensors;
}

std::vector<OxygenSensorLocation> Ecu::getOxygenSensors() const
{
    return m_oxygenSensors;
}

unsigned int Ecu::getOxygenSensorLayout() const
{
    if (isSupported(1, 0x13))
        return 1;
    if (isSupported(1, 0x1D))
        return 2;
    return 0;
}

void Ecu::setObdStandard(unsigned int standard, const std::string& text)
{
    m_obdStandard = standard;
    m_obdStandardText = text;
}

unsigned int Ecu::getObdStandard() const
{
    return m_obdStandard;
}

std::string Ecu::getObdStandardText() const
{
    return m_obdStandardText;
}

void Ecu::setNames(const std::string& shortName, const std::string& longName)
{
    m_shortName = shortName;
    m_longName = longName;
}

std::string Ecu::getIdText() const
{
    return idText(m_id);
}

std::string Ecu::idText(unsigned int id)
{
    char text[16];
    std::snprintf(text, sizeof text, id > 0xFFF ? "%08X" : "%03X", id);
    return text;
}

std::string Ecu::getShortName() const
{
    return m_shortName;
}

std::string Ecu::getLongName() const
{
    return m_longName;
}

} // namespace Obd
