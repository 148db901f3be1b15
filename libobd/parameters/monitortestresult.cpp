#include "monitortestresult.h"
#include "canmonitortestitem.h"
#include "ecu.h"
#include "iscantool.h"
#include "monitortestitem.h"
#include "monitortestnames.h"
#include "trlog.h"

namespace Obd {

namespace {

// CAN layout: after the response byte, a whole number of 9-byte records.
//
//   0     1     2       3    4    5    6    7    8
//   +-----+-----+-------+---------+---------+---------+
//   | MID | TID | UASID | VALUE   | MINIMUM | MAXIMUM |   (16-bit big-endian)
//   +-----+-----+-------+---------+---------+---------+
const size_t CAN_RECORD = 9;

// Legacy (non-CAN) layout, decided for this system (J1979 leaves the data
// to the manufacturer): the request is 06 TID and the ECU sends one 7-byte
// line per component.
//
//   0    1     2     3       4       5       6
//   +----+-----+-----+-------+-------+-------+-------+
//   | 46 | TID | CID | VALhi | VALlo | LIMhi | LIMlo |
//   +----+-----+-----+-------+-------+-------+-------+
//   CID bit 7: limit type (0: LIM is a maximum, 1: a minimum)
//   CID bits 0..6: the component id
//
// The values are raw unsigned 16-bit numbers without standard scaling.
const size_t LEGACY_LINE = 7;
const unsigned char LIMIT_TYPE_BIT = 0x80;
const unsigned char COMPONENT_MASK = 0x7F;

unsigned int word(const std::vector<unsigned char>& data, size_t at)
{
    return (static_cast<unsigned int>(data[at]) << 8) | data[at + 1];
}

} // namespace

MonitorTestResult::MonitorTestResult(unsigned char id)
    : m_id(id)
    , m_system(US_METRIC)
{
}

MonitorTestResult::~MonitorTestResult()
{
}

void MonitorTestResult::clear()
{
    m_results.clear();
}

void MonitorTestResult::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x06);
    request.push_back(m_id);
}

void MonitorTestResult::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x46);
    signature.push_back(m_id);
}

bool MonitorTestResult::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (isCanProtocol(m_protocol))
        return parseCan(ecuId, data);
    return parseLegacy(ecuId, data);
}

bool MonitorTestResult::parseCan(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (data.size() < 1 + CAN_RECORD || (data.size() - 1) % CAN_RECORD != 0) {
        OBD_ERROR << "Invalid length: " << data.size();
        return false;
    }
    MidMap mids;
    for (size_t at = 1; at + CAN_RECORD <= data.size(); at += CAN_RECORD) {
        std::shared_ptr<TestItemData>& items = mids[data[at]];
        if (!items)
            items = std::make_shared<TestItemData>();
        items->push_back(std::make_shared<CanMonitorTestItem>(
            data[at + 1], data[at + 2], word(data, at + 3), word(data, at + 5),
            word(data, at + 7), m_system));
    }
    m_results[ecuId] = mids;
    return true;
}

bool MonitorTestResult::parseLegacy(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (data.empty() || data.size() % LEGACY_LINE != 0) {
        OBD_ERROR << "Invalid length: " << data.size();
        return false;
    }
    MidMap tids;
    for (size_t at = 0; at + LEGACY_LINE <= data.size(); at += LEGACY_LINE) {
        if (data[at] != 0x46) {
            OBD_ERROR << "Invalid data received";
            return false;
        }
        const unsigned char tid = data[at + 1];
        const unsigned char cid = data[at + 2];
        const MonitorTestItem::LimitType type = (cid & LIMIT_TYPE_BIT)
            ? MonitorTestItem::LIMIT_MINIMUM
            : MonitorTestItem::LIMIT_MAXIMUM;
        std::shared_ptr<TestItemData>& items = tids[tid];
        if (!items)
            items = std::make_shared<TestItemData>();
        items->push_back(std::make_shared<MonitorTestItem>(
            tid, static_cast<unsigned char>(cid & COMPONENT_MASK), type, word(data, at + 3),
            word(data, at + 5)));
    }
    m_results[ecuId] = tids;
    return true;
}

unsigned char MonitorTestResult::getId() const
{
    return m_id;
}

void MonitorTestResult::setUnitSystem(UnitSystem system)
{
    m_system = system;
    for (auto& ecu : m_results) {
        for (auto& mid : ecu.second) {
            for (const std::shared_ptr<IMonitorTestItem>& item : *mid.second)
                item->setUnitSystem(system);
        }
    }
}

UnitSystem MonitorTestResult::getUnitSystem() const
{
    return m_system;
}

const MonitorTestResult::MidMap* MonitorTestResult::find(const Ecu& ecu) const
{
    auto it = m_results.find(ecu.getId());
    if (it == m_results.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return nullptr;
    }
    return &it->second;
}

std::vector<unsigned char> MonitorTestResult::getMids(const Ecu& ecu) const
{
    std::vector<unsigned char> mids;
    if (const MidMap* map = find(ecu)) {
        for (const auto& entry : *map)
            mids.push_back(entry.first);
    }
    return mids;
}

MonitorTestResult::TestItemData MonitorTestResult::getTestItems(const Ecu& ecu,
                                                                unsigned char mid) const
{
    if (const MidMap* map = find(ecu)) {
        auto it = map->find(mid);
        if (it != map->end())
            return *it->second;
    }
    return TestItemData();
}

void MonitorTestResult::getEcuIds(std::vector<unsigned int>& ids) const
{
    for (const auto& entry : m_results)
        ids.push_back(entry.first);
}

std::string MonitorTestResult::getMidName(unsigned char mid)
{
    return MonitorTestNames::midName(mid);
}

std::string MonitorTestResult::getTidName(unsigned char tid)
{
    return MonitorTestNames::tidName(tid);
}

} // namespace Obd
