#include "obdresponder.h"

#include "dtccode.h"
#include "pidtable.h"

#include <algorithm>
#include <cmath>

namespace ElmSim {

namespace {

const uint8_t NEGATIVE_RESPONSE = 0x7F;
const uint8_t SERVICE_NOT_SUPPORTED = 0x11;
const uint8_t CONDITIONS_NOT_CORRECT = 0x22;

bool isRangePid(uint8_t pid)
{
    return pid % 0x20 == 0;
}

bool anyAbove(const std::vector<uint8_t>& list, uint8_t value)
{
    return std::any_of(list.begin(), list.end(), [value](uint8_t n) { return n > value; });
}

// Service 05 test values: one byte in the TID's SAE J1979 scaling.
uint8_t oxygenTestByte(uint8_t tid, double value)
{
    double perBit = 1.0;
    if ((tid >= 0x01 && tid <= 0x04) || tid == 0x07 || tid == 0x08)
        perBit = 0.005;                  // volts
    else if (tid == 0x05 || tid == 0x06)
        perBit = 0.004;                  // seconds
    else if (tid == 0x09 || tid == 0x0A)
        perBit = 0.04;                   // seconds
    const double raw = std::round(value / perBit);
    return static_cast<uint8_t>(std::clamp(raw, 0.0, 255.0));
}

void append16(std::vector<uint8_t>& message, uint16_t value)
{
    message.push_back(static_cast<uint8_t>(value >> 8));
    message.push_back(static_cast<uint8_t>(value));
}

void appendText(std::vector<uint8_t>& data, const std::string& text, size_t width)
{
    for (size_t i = 0; i < width; ++i)
        data.push_back(i < text.size() ? static_cast<uint8_t>(text[i]) : 0x00);
}

} // namespace

ObdResponder::ObdResponder(Profile& profile)
    : m_profile(profile)
    , m_model(profile.vehicle)
{
}

void ObdResponder::respond(const uint8_t* request, size_t length, double seconds, std::vector<EcuAnswer>& answers)
{
    answers.clear();
    if (length == 0)
        return;
    const VehicleState state = m_model.stateAt(seconds);
    const uint8_t service = request[0];
    for (EcuProfile& ecu : m_profile.ecus) {
        EcuAnswer answer;
        answer.ecuId = ecu.id;
        bool answered = false;
        switch (service) {
        case 0x01:
            answered = liveData(ecu, request, length, state, answer);
            break;
        case 0x02:
            answered = freezeFrame(ecu, request, length, answer);
            break;
        case 0x03:
            answered = length == 1 && troubleCodes(ecu.storedDtcs, 0x43, answer);
            break;
        case 0x04:
            answered = length == 1 && clearCodes(ecu, state, answer);
            break;
        case 0x05:
            answered = oxygenSensorTests(ecu, request, length, answer);
            break;
        case 0x06:
            answered = monitorTests(ecu, request, length, answer);
            break;
        case 0x07:
            answered = length == 1 && troubleCodes(ecu.pendingDtcs, 0x47, answer);
            break;
        case 0x09:
            answered = length == 2 && vehicleInfo(ecu, request[1], answer);
            break;
        default:
            break;                       // OBD ECUs ignore other services
        }
        if (answered)
            answers.push_back(std::move(answer));
    }
    order(request, length, answers);
}

void ObdResponder::order(const uint8_t* request, size_t length, std::vector<EcuAnswer>& answers) const
{
    std::sort(answers.begin(), answers.end(),
              [](const EcuAnswer& a, const EcuAnswer& b) { return a.ecuId < b.ecuId; });
    const bool oddRequest = (request[length - 1] & 0x01) != 0;
    if (m_profile.order == EcuOrder::Descending
        || (m_profile.order == EcuOrder::ReversedOnOddRequests && oddRequest))
        std::reverse(answers.begin(), answers.end());
}

void ObdResponder::appendBitmap(Message& message, uint32_t bitmap) const
{
    message.push_back(static_cast<uint8_t>(bitmap >> 24));
    message.push_back(static_cast<uint8_t>(bitmap >> 16));
    message.push_back(static_cast<uint8_t>(bitmap >> 8));
    message.push_back(static_cast<uint8_t>(bitmap));
}

bool ObdResponder::liveData(const EcuProfile& ecu, const uint8_t* request, size_t length, const VehicleState& state,
                            EcuAnswer& answer) const
{
    // CAN ECUs take up to six PIDs in one request; K-line and J1850 one.
    if (length < 2 || (!m_profile.isCan() && length != 2))
        return false;
    Message message{ 0x41 };
    for (size_t i = 1; i < length; ++i) {
        const uint8_t pid = request[i];
        if (!ecu.supportsPid(0x01, pid))
            continue;
        if (isRangePid(pid)) {
            message.push_back(pid);
            appendBitmap(message, m_profile.supportBitmap(ecu.id, 0x01, pid));
            continue;
        }
        const PidRow* row = PidTable::find(pid);
        if (!row)
            continue;
        double values[4] = { 0.0, 0.0, 0.0, 0.0 };
        uint8_t bytes[8];
        row->values(pid, state, ecu, values);
        row->encode(values, bytes);
        message.push_back(pid);
        message.insert(message.end(), bytes, bytes + row->length);
    }
    if (message.size() == 1)
        return false;
    answer.messages.push_back(std::move(message));
    return true;
}

bool ObdResponder::freezeFrame(const EcuProfile& ecu, const uint8_t* request, size_t length, EcuAnswer& answer) const
{
    if (length < 2 || length > 3)
        return false;
    const uint8_t pid = request[1];
    const uint8_t frame = length == 3 ? request[2] : 0x00;
    if (frame != 0x00 || !ecu.supportsPid(0x02, pid))
        return false;
    Message message{ 0x42, pid, frame };
    const bool frameStored = ecu.hasFreezeFrame && !ecu.cleared;
    if (isRangePid(pid)) {
        appendBitmap(message, m_profile.supportBitmap(ecu.id, 0x02, pid));
    } else if (pid == 0x02) {
        uint8_t code[2] = { 0x00, 0x00 };   // 00 00: no frame stored
        if (frameStored && !DtcCode::toBytes(ecu.freezeFrame.dtc, code))
            return false;
        message.insert(message.end(), code, code + 2);
    } else {
        const PidRow* row = PidTable::find(pid);
        const auto& pids = ecu.freezeFrame.pids;
        if (!frameStored || !row || std::find(pids.begin(), pids.end(), pid) == pids.end())
            return false;
        double values[4] = { 0.0, 0.0, 0.0, 0.0 };
        uint8_t bytes[8];
        row->values(pid, m_model.stateAt(ecu.freezeFrame.atSeconds), ecu, values);
        row->encode(values, bytes);
        message.insert(message.end(), bytes, bytes + row->length);
    }
    answer.messages.push_back(std::move(message));
    return true;
}

bool ObdResponder::troubleCodes(const std::vector<std::string>& codes, uint8_t responseByte,
                                EcuAnswer& answer) const
{
    std::vector<uint8_t> pairs;
    for (const std::string& code : codes) {
        uint8_t bytes[2];
        if (DtcCode::toBytes(code, bytes))
            pairs.insert(pairs.end(), bytes, bytes + 2);
    }
    if (m_profile.isCan()) {
        // 43 N, then N code pairs (multi-frame when long).
        Message message{ responseByte, static_cast<uint8_t>(pairs.size() / 2) };
        message.insert(message.end(), pairs.begin(), pairs.end());
        answer.messages.push_back(std::move(message));
        return true;
    }
    // Legacy buses: three codes per frame, 00 00 filled; one empty frame
    // when there is nothing to report.
    size_t offset = 0;
    do {
        Message message{ responseByte };
        for (int slot = 0; slot < 6; ++slot, ++offset)
            message.push_back(offset < pairs.size() ? pairs[offset] : 0x00);
        answer.messages.push_back(std::move(message));
    } while (offset < pairs.size());
    return true;
}

bool ObdResponder::clearCodes(EcuProfile& ecu, const VehicleState& state, EcuAnswer& answer)
{
    if (ecu.clearRefusal != 0) {
        answer.messages.push_back({ NEGATIVE_RESPONSE, 0x04, ecu.clearRefusal });
        return true;
    }
    if (ecu.refusesClearWhileRunning && state.rpm > 0.0) {
        answer.messages.push_back({ NEGATIVE_RESPONSE, 0x04, CONDITIONS_NOT_CORRECT });
        return true;
    }
    ecu.storedDtcs.clear();
    ecu.pendingDtcs.clear();
    ecu.cleared = true;
    ecu.clearedAtKm = state.distanceKm;
    ecu.clearedAtSeconds = state.seconds;
    answer.messages.push_back({ 0x44 });
    return true;
}

bool ObdResponder::oxygenSensorTests(const EcuProfile& ecu, const uint8_t* request, size_t length,
                                     EcuAnswer& answer) const
{
    if (m_profile.isCan()) {
        // Service 05 does not exist on ISO 15765-4.
        answer.messages.push_back({ NEGATIVE_RESPONSE, 0x05, SERVICE_NOT_SUPPORTED });
        return true;
    }
    if (length < 2 || length > 3 || ecu.oxygenSensors == 0)
        return false;
    const uint8_t tid = request[1];
    for (int bit = 0; bit < 8; ++bit) {
        const uint8_t sensor = static_cast<uint8_t>(1u << bit);
        if ((ecu.oxygenSensors & sensor) == 0 || (length == 3 && request[2] != sensor))
            continue;
        const std::vector<uint8_t> tids = ecu.oxygenSensorTids(sensor);
        if (isRangePid(tid)) {
            if (tid != 0 && !anyAbove(tids, tid))
                continue;
            Message message{ 0x45, tid, sensor };
            appendBitmap(message, m_profile.oxygenSensorTidBitmap(ecu.id, sensor, tid));
            answer.messages.push_back(std::move(message));
            continue;
        }
        for (const OxygenSensorTest& test : ecu.oxygenSensorTests) {
            if (test.sensor == sensor && test.tid == tid)
                answer.messages.push_back({ 0x45, tid, sensor, oxygenTestByte(tid, test.value),
                                            oxygenTestByte(tid, test.minimum), oxygenTestByte(tid, test.maximum) });
        }
    }
    return !answer.messages.empty();
}

bool ObdResponder::monitorTests(const EcuProfile& ecu, const uint8_t* request, size_t length, EcuAnswer& answer) const
{
    if (length != 2)
        return false;
    const uint8_t id = request[1];
    const std::vector<uint8_t> ids = ecu.monitorIds();
    if (ids.empty())
        return false;
    if (isRangePid(id)) {
        if (id != 0 && !anyAbove(ids, id))
            return false;
        // Legacy buses put a filler byte FF before the bitmap.
        Message message{ 0x46, id };
        if (!m_profile.isCan())
            message.push_back(0xFF);
        appendBitmap(message, m_profile.supportBitmap(ecu.id, 0x06, id));
        answer.messages.push_back(std::move(message));
        return true;
    }
    if (m_profile.isCan()) {
        // 46, then 9-byte records: MID TID UASID value min max.
        Message message{ 0x46 };
        for (const MonitorRecord& r : ecu.monitorTests) {
            if (r.mid != id)
                continue;
            message.push_back(r.mid);
            message.push_back(r.tid);
            message.push_back(r.unitScaling);
            append16(message, r.value);
            append16(message, r.minimum);
            append16(message, r.maximum);
        }
        if (message.size() == 1)
            return false;
        answer.messages.push_back(std::move(message));
        return true;
    }
    // Legacy: one line per component, 46 TID CID value limit.
    for (const LegacyMonitorRecord& r : ecu.legacyMonitorTests) {
        if (r.tid != id)
            continue;
        Message message{ 0x46, r.tid,
                         static_cast<uint8_t>((r.limitIsMinimum ? 0x80 : 0x00) | (r.componentId & 0x7F)) };
        append16(message, r.value);
        append16(message, r.limit);
        answer.messages.push_back(std::move(message));
    }
    return !answer.messages.empty();
}

void ObdResponder::framedInfo(uint8_t infoType, const std::vector<uint8_t>& data, EcuAnswer& answer) const
{
    uint8_t number = 1;
    for (size_t offset = 0; offset < data.size(); offset += 4, ++number) {
        Message message{ 0x49, infoType, number };
        for (size_t i = offset; i < offset + 4; ++i)
            message.push_back(i < data.size() ? data[i] : 0x00);
        answer.messages.push_back(std::move(message));
    }
}

bool ObdResponder::vehicleInfo(const EcuProfile& ecu, uint8_t infoType, EcuAnswer& answer) const
{
    if (!ecu.supportsInfoType(infoType))
        return false;
    const bool can = m_profile.isCan();
    if (isRangePid(infoType)) {
        Message message{ 0x49, infoType };
        if (!can)
            message.push_back(0x01);     // message count of the legacy layout
        appendBitmap(message, m_profile.supportBitmap(ecu.id, 0x09, infoType));
        answer.messages.push_back(std::move(message));
        return true;
    }

    // Items: count and the bytes of all items of this info type.
    uint8_t items = 0;
    std::vector<uint8_t> data;
    switch (infoType) {
    case 0x01:                           // message counts of the legacy layout
    case 0x03:
    case 0x05:
    case 0x07:
    case 0x09: {
        size_t messages = 0;
        if (infoType == 0x01)
            messages = 5;
        else if (infoType == 0x03)
            messages = 4 * ecu.calibrationIds.size();
        else if (infoType == 0x05)
            messages = ecu.cvns.size();
        else if (infoType == 0x07)
            messages = (ecu.performanceCounters.size() + 1) / 2;
        else
            messages = 5;
        answer.messages.push_back({ 0x49, infoType, static_cast<uint8_t>(messages) });
        return true;
    }
    case 0x02:
        items = 1;
        if (!can)
            data.assign(3, 0x00);        // 20-byte field, 3 bytes of fill
        appendText(data, ecu.vin, 17);
        break;
    case 0x04:
        items = static_cast<uint8_t>(ecu.calibrationIds.size());
        for (const std::string& id : ecu.calibrationIds)
            appendText(data, id, 16);
        break;
    case 0x06:
        items = static_cast<uint8_t>(ecu.cvns.size());
        for (uint32_t cvn : ecu.cvns) {
            append16(data, static_cast<uint16_t>(cvn >> 16));
            append16(data, static_cast<uint16_t>(cvn));
        }
        break;
    case 0x08:
    case 0x0B:
        items = static_cast<uint8_t>(ecu.performanceCounters.size());
        for (uint16_t count : ecu.performanceCounters)
            append16(data, count);
        break;
    case 0x0A: {
        items = 1;
        const std::string name = ecu.ecuName20();
        data.assign(name.begin(), name.end());
        break;
    }
    default:
        return false;
    }
    if (can) {
        Message message{ 0x49, infoType, items };
        message.insert(message.end(), data.begin(), data.end());
        answer.messages.push_back(std::move(message));
    } else {
        framedInfo(infoType, data, answer);
    }
    return true;
}

} // namespace ElmSim
