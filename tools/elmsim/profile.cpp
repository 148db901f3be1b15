#include "profile.h"

#include "pidtable.h"

#include <algorithm>
#include <limits>

namespace ElmSim {

namespace {

const double NOT_REPORTED = std::numeric_limits<double>::quiet_NaN();

bool contains(const std::vector<uint8_t>& list, uint8_t value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

// Bitmap for numbers rangeStart+1 .. rangeStart+32 of a sorted-or-not list;
// the last bit says that something lies beyond the range.
uint32_t bitmapOf(const std::vector<uint8_t>& list, uint8_t rangeStart)
{
    uint32_t bits = 0;
    for (uint8_t n : list) {
        const int offset = n - rangeStart;
        if (offset >= 1 && offset <= 32)
            bits |= 1u << (32 - offset);
        if (offset > 32)
            bits |= 1u;
    }
    return bits;
}

} // namespace

bool EcuProfile::supportsPid(uint8_t service, uint8_t pid) const
{
    const std::vector<uint8_t>* list = nullptr;
    if (service == 0x01)
        list = &pids01;
    else if (service == 0x02)
        list = &pids02;
    else
        return false;
    if (pid % 0x20 == 0) {
        // A range PID is there when the range below lists its successor.
        if (pid == 0)
            return !list->empty();
        return std::any_of(list->begin(), list->end(), [pid](uint8_t n) { return n > pid; });
    }
    return contains(*list, pid);
}

bool EcuProfile::supportsInfoType(uint8_t infoType) const
{
    return infoType == 0 ? !infoTypes09.empty() : contains(infoTypes09, infoType);
}

bool EcuProfile::milOn() const
{
    return codesLightMil && !storedDtcs.empty();
}

bool EcuProfile::fourBankSensorLayout() const
{
    return contains(pids01, 0x1D) && !contains(pids01, 0x13);
}

std::vector<uint8_t> EcuProfile::monitorIds() const
{
    std::vector<uint8_t> ids;
    for (const MonitorRecord& r : monitorTests)
        ids.push_back(r.mid);
    for (const LegacyMonitorRecord& r : legacyMonitorTests)
        ids.push_back(r.tid);
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

std::vector<uint8_t> EcuProfile::oxygenSensorTids(uint8_t sensor) const
{
    std::vector<uint8_t> tids;
    for (const OxygenSensorTest& t : oxygenSensorTests) {
        if (t.sensor == sensor)
            tids.push_back(t.tid);
    }
    return tids;
}

std::string EcuProfile::ecuName20() const
{
    std::string text(20, '\0');
    text.replace(0, std::min<size_t>(4, ecuNameAbbreviation.size()), ecuNameAbbreviation.substr(0, 4));
    text[4] = '-';
    text.replace(5, std::min<size_t>(15, ecuNameText.size()), ecuNameText.substr(0, 15));
    return text;
}

bool Profile::isCan() const
{
    return protocol >= 6 && protocol <= 9;
}

bool Profile::isCan29() const
{
    return protocol == 7 || protocol == 9;
}

std::string Profile::protocolDescription() const
{
    return protocolDescription(protocol);
}

std::string Profile::protocolDescription(int protocol)
{
    static const char* const NAMES[] = {
        "AUTO",
        "SAE J1850 PWM",
        "SAE J1850 VPW",
        "ISO 9141-2",
        "ISO 14230-4 (KWP 5BAUD)",
        "ISO 14230-4 (KWP FAST)",
        "ISO 15765-4 (CAN 11/500)",
        "ISO 15765-4 (CAN 29/500)",
        "ISO 15765-4 (CAN 11/250)",
        "ISO 15765-4 (CAN 29/250)",
    };
    if (protocol < 0 || protocol > 9)
        return std::string();
    return NAMES[protocol];
}

const EcuProfile* Profile::ecu(uint32_t id) const
{
    for (const EcuProfile& e : ecus) {
        if (e.id == id)
            return &e;
    }
    return nullptr;
}

EcuProfile* Profile::ecu(uint32_t id)
{
    return const_cast<EcuProfile*>(static_cast<const Profile*>(this)->ecu(id));
}

double Profile::physicalValue(uint32_t ecuId, uint8_t pid, double seconds, int index) const
{
    const EcuProfile* e = ecu(ecuId);
    const PidRow* row = PidTable::find(pid);
    if (!e || !row || !e->supportsPid(0x01, pid) || index < 0 || index >= row->valueCount)
        return NOT_REPORTED;
    double values[4] = { 0.0, 0.0, 0.0, 0.0 };
    row->values(pid, VehicleModel(vehicle).stateAt(seconds), *e, values);
    return values[index];
}

double Profile::freezeFrameValue(uint32_t ecuId, uint8_t pid, int index) const
{
    const EcuProfile* e = ecu(ecuId);
    const PidRow* row = PidTable::find(pid);
    if (!e || !row || !e->hasFreezeFrame || !contains(e->freezeFrame.pids, pid) || index < 0
        || index >= row->valueCount)
        return NOT_REPORTED;
    double values[4] = { 0.0, 0.0, 0.0, 0.0 };
    row->values(pid, VehicleModel(vehicle).stateAt(e->freezeFrame.atSeconds), *e, values);
    return values[index];
}

uint32_t Profile::supportBitmap(uint32_t ecuId, uint8_t service, uint8_t rangeStart) const
{
    const EcuProfile* e = ecu(ecuId);
    if (!e)
        return 0;
    switch (service) {
    case 0x01:
        return bitmapOf(e->pids01, rangeStart);
    case 0x02:
        return bitmapOf(e->pids02, rangeStart);
    case 0x06:
        return bitmapOf(e->monitorIds(), rangeStart);
    case 0x09:
        return bitmapOf(e->infoTypes09, rangeStart);
    default:
        return 0;
    }
}

uint32_t Profile::oxygenSensorTidBitmap(uint32_t ecuId, uint8_t sensor, uint8_t rangeStart) const
{
    const EcuProfile* e = ecu(ecuId);
    return e ? bitmapOf(e->oxygenSensorTids(sensor), rangeStart) : 0;
}

} // namespace ElmSim
