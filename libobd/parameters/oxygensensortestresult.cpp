#include "oxygensensortestresult.h"
#include "ecu.h"
#include "trlog.h"

namespace Obd {

namespace {

// Service 05 layout, decided for this system: the request is 05 TID and the
// ECU sends one 6-byte line per sensor tested.
//
//   0    1     2    3     4     5
//   +----+-----+----+-----+-----+-----+
//   | 45 | TID | SS | VAL | MIN | MAX |
//   +----+-----+----+-----+-----+-----+
//   SS: one bit set, bit i for OxygenSensorLocation i (the PID 13 numbering).
const size_t LINE = 6;

// The location of a sensor byte with exactly one bit set, else -1.
int locationOf(unsigned char sensor)
{
    for (int bit = 0; bit < 8; ++bit) {
        if (sensor == (1u << bit))
            return bit;
    }
    return -1;
}

} // namespace

OxygenSensorTestResult::OxygenSensorTestResult(unsigned char tid)
    : m_tid(tid)
{
}

OxygenSensorTestResult::~OxygenSensorTestResult()
{
}

void OxygenSensorTestResult::clear()
{
    m_results.clear();
}

void OxygenSensorTestResult::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x05);
    request.push_back(m_tid);
}

void OxygenSensorTestResult::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x45);
    signature.push_back(m_tid);
}

bool OxygenSensorTestResult::parsePayload(unsigned int ecuId,
                                          const std::vector<unsigned char>& data)
{
    if (data.empty() || data.size() % LINE != 0) {
        OBD_ERROR << "TID" << static_cast<unsigned int>(m_tid)
                  << ": invalid number of data bytes:" << data.size();
        return false;
    }
    SensorMap sensors;
    for (size_t at = 0; at + LINE <= data.size(); at += LINE) {
        if (data[at] != 0x45 || data[at + 1] != m_tid) {
            OBD_ERROR << "Invalid data received";
            return false;
        }
        const int location = locationOf(data[at + 2]);
        if (location < 0) {
            OBD_ERROR << "Invalid sensor byte: " << static_cast<unsigned int>(data[at + 2]);
            return false;
        }
        const OxygenSensorLocation sensor = static_cast<OxygenSensorLocation>(location);
        sensors[sensor] = std::make_shared<OxygenSensorTestItem>(m_tid, sensor, data[at + 3],
                                                                 data[at + 4], data[at + 5]);
    }
    m_results[ecuId] = sensors;
    return true;
}

unsigned char OxygenSensorTestResult::getTid() const
{
    return m_tid;
}

const OxygenSensorTestResult::SensorMap* OxygenSensorTestResult::find(const Ecu& ecu) const
{
    auto it = m_results.find(ecu.getId());
    if (it == m_results.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return nullptr;
    }
    return &it->second;
}

std::vector<OxygenSensorLocation> OxygenSensorTestResult::getSensors(const Ecu& ecu) const
{
    std::vector<OxygenSensorLocation> sensors;
    if (const SensorMap* map = find(ecu)) {
        for (const auto& entry : *map)
            sensors.push_back(entry.first);
    }
    return sensors;
}

std::shared_ptr<OxygenSensorTestItem> OxygenSensorTestResult::getItem(
    const Ecu& ecu, OxygenSensorLocation location) const
{
    if (const SensorMap* map = find(ecu)) {
        auto it = map->find(location);
        if (it != map->end())
            return it->second;
    }
    return std::shared_ptr<OxygenSensorTestItem>();
}

void OxygenSensorTestResult::getEcuIds(std::vector<unsigned int>& ids) const
{
    for (const auto& entry : m_results)
        ids.push_back(entry.first);
}

std::string OxygenSensorTestResult::getTidName(unsigned char tid)
{
    static const char* const NAMES[] = {
        "NA",                                                         // 00
        "Rich to lean sensor threshold voltage (constant)",           // 01
        "Lean to rich sensor threshold voltage (constant)",           // 02
        "Low sensor voltage for switch time calculation (constant)",  // 03
        "High sensor voltage for switch time calculation (constant)", // 04
        "Rich to lean sensor switch time (calculated)",               // 05
        "Lean to rich sensor switch time (calculated)",               // 06
        "Minimum sensor voltage for test cycle (calculated)",         // 07
        "Maximum sensor voltage for test cycle (calculated)",         // 08
        "Time between sensor transitions (calculated)",               // 09
        "Sensor period (calculated)",                                 // 0A
        "Not applicable",                                             // 0B
        "Not applicable",                                             // 0C
    };
    if (tid < sizeof(NAMES) / sizeof(NAMES[0]))
        return NAMES[tid];
    if (tid <= 0x1F || tid == 0xFF)
        return "ISO/SAE reserved";
    if (tid == 0x20)
        return "NA";
    return "Manufacturer Defined Test";
}

} // namespace Obd
