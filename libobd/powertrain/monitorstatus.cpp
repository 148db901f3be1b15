#include "monitorstatus.h"
#include "ecu.h"
#include "trlog.h"

#include <algorithm>

namespace Obd {

namespace {

struct MonitorRow
{
    unsigned int id;
    MonitorStatus::MonitorKind kind;
    const char* name;
    unsigned int supportedBit; // bit of W
    unsigned int incompleteBit;
};

// Ids 3..9 are the spark-ignition monitors, 10..15 the compression-ignition
// ones reusing the same bits of C and D. "Comperehensive" is the system's text.
const MonitorRow MONITORS[] = {
    { 0, MonitorStatus::CONTINUOUS, "Misfire", 16, 20 },
    { 1, MonitorStatus::CONTINUOUS, "Fuel System", 17, 21 },
    { 2, MonitorStatus::CONTINUOUS, "Comperehensive Component", 18, 22 },
    { 3, MonitorStatus::NON_CONTINUOUS, "Catalyst", 8, 0 },
    { 4, MonitorStatus::NON_CONTINUOUS, "Heated Catalyst", 9, 1 },
    { 5, MonitorStatus::NON_CONTINUOUS, "Evaporative System", 10, 2 },
    { 6, MonitorStatus::NON_CONTINUOUS, "Secondary Air System", 11, 3 },
    { 7, MonitorStatus::NON_CONTINUOUS, "Oxygen Sensor", 13, 5 },
    { 8, MonitorStatus::NON_CONTINUOUS, "Oxygen Sensor Heater", 14, 6 },
    { 9, MonitorStatus::NON_CONTINUOUS, "EGR and/or VVT System", 15, 7 },
    { 10, MonitorStatus::NON_CONTINUOUS, "NMHC Catalyst", 8, 0 },
    { 11, MonitorStatus::NON_CONTINUOUS, "NOx/SCR Aftertreatment", 9, 1 },
    { 12, MonitorStatus::NON_CONTINUOUS, "Boost Pressure", 11, 3 },
    { 13, MonitorStatus::NON_CONTINUOUS, "Exhaust Gas Sensor", 13, 5 },
    { 14, MonitorStatus::NON_CONTINUOUS, "PM filter", 14, 6 },
    { 15, MonitorStatus::NON_CONTINUOUS, "EGR and/or VVT System", 15, 7 },
    { MonitorStatus::IGNITION_TYPE, MonitorStatus::CONTINUOUS, nullptr, 19, 23 },
};

const unsigned int MONITOR_COUNT = sizeof(MONITORS) / sizeof(MONITORS[0]);

const unsigned int MIL_BIT = 31;
const unsigned int COMPRESSION_IGNITION_BIT = 19;

} // namespace

MonitorStatus::MonitorStatus(unsigned char mode)
    : CataloguePid(0x01, mode)
{
}

MonitorStatus::MonitorStatus(unsigned char pid, unsigned char mode)
    : CataloguePid(pid, mode)
{
}

MonitorStatus::~MonitorStatus()
{
}

bool MonitorStatus::decode(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (!m_descriptor.acceptsLength(data.size()))
        return false;
    m_values[ecuId] = static_cast<uint32_t>(data[0]) << 24 | static_cast<uint32_t>(data[1]) << 16
        | static_cast<uint32_t>(data[2]) << 8 | data[3];
    return true;
}

void MonitorStatus::getFormattedValues(const Ecu& ecu, UnitSystem, std::vector<std::string>& list) const
{
    if (!hasValue(ecu))
        return;
    const unsigned int count = getDtcCount(ecu);
    list.push_back(std::string(isMilOn(ecu) ? "MIL on, " : "MIL off, ") + std::to_string(count)
                   + (count == 1 ? " code, " : " codes, ") + readinessSummary(ecu));
}

bool MonitorStatus::hasValue(const Ecu& ecu) const
{
    return m_values.count(ecu.getId()) > 0;
}

std::vector<unsigned int> MonitorStatus::supportedMonitors(const Ecu& ecu) const
{
    // Ids 3..9 are the spark-ignition monitors, 10..15 the compression-ignition ones.
    const bool compression = isCompressionIgnition(ecu);
    std::vector<unsigned int> ids;
    for (unsigned int id = 0; id < IGNITION_TYPE; ++id) {
        if (id >= 3 && (id >= 10) != compression)
            continue;
        if (isSupported(ecu, id))
            ids.push_back(id);
    }
    return ids;
}

std::string MonitorStatus::readinessSummary(const Ecu& ecu) const
{
    const std::vector<unsigned int> ids = supportedMonitors(ecu);
    const auto complete = std::count_if(ids.begin(), ids.end(), [&](unsigned int id) { return isComplete(ecu, id); });
    return std::to_string(complete) + "/" + std::to_string(ids.size()) + " ready";
}

bool MonitorStatus::find(const Ecu& ecu, uint32_t& word) const
{
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return false;
    }
    word = it->second;
    return true;
}

bool MonitorStatus::isMilOn(const Ecu& ecu) const
{
    uint32_t word = 0;
    return find(ecu, word) && bit(word, MIL_BIT);
}

unsigned int MonitorStatus::getDtcCount(const Ecu& ecu) const
{
    uint32_t word = 0;
    return find(ecu, word) ? (word >> 24) & 0x7F : 0;
}

bool MonitorStatus::isCompressionIgnition(const Ecu& ecu) const
{
    uint32_t word = 0;
    return find(ecu, word) && bit(word, COMPRESSION_IGNITION_BIT);
}

bool MonitorStatus::isSupported(const Ecu& ecu, unsigned int monitorId) const
{
    uint32_t word = 0;
    if (!find(ecu, word) || monitorId >= MONITOR_COUNT)
        return false;
    return bit(word, MONITORS[monitorId].supportedBit);
}

bool MonitorStatus::isComplete(const Ecu& ecu, unsigned int monitorId) const
{
    uint32_t word = 0;
    if (!find(ecu, word) || monitorId >= MONITOR_COUNT)
        return false;
    return bit(word, MONITORS[monitorId].supportedBit) && !bit(word, MONITORS[monitorId].incompleteBit);
}

std::string MonitorStatus::getMonitorName(unsigned int monitorId)
{
    if (monitorId >= MONITOR_COUNT || !MONITORS[monitorId].name)
        return "NA";
    return MONITORS[monitorId].name;
}

MonitorStatus::MonitorKind MonitorStatus::getMonitorKind(unsigned int monitorId)
{
    return monitorId < MONITOR_COUNT ? MONITORS[monitorId].kind : CONTINUOUS;
}

} // namespace Obd
