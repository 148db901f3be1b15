#include "fuzzentries.h"

#include "canresponse.h"
#include "ecu.h"
#include "elmscantool.h"
#include "fakeconnection.h"
#include "fakeproxy.h"
#include "fakescantool.h"
#include "imonitortestitem.h"
#include "iscantool.h"
#include "obdtransporter.h"
#include "oxygensensortestitem.h"
#include "sensorinfo.h"
#include "parameters/calibrationids.h"
#include "parameters/calibrationverificationnumbers.h"
#include "parameters/cleartroublecodes.h"
#include "parameters/ecuname.h"
#include "parameters/monitortestresult.h"
#include "parameters/oxygensensortestresult.h"
#include "parameters/pendingtroublecodes.h"
#include "parameters/performancetrackingcompression.h"
#include "parameters/performancetrackingspark.h"
#include "parameters/storedtroublecodes.h"
#include "parameters/supportedtids.h"
#include "parameters/supportedvehicleinfos.h"
#include "parameters/vehicleidentificationnumber.h"
#include "powertrain/parameterfactory.h"
#include "powertrain/supportedpids.h"

#include <algorithm>
#include <memory>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;

const unsigned int ECU_ID = 0x7E8;

std::string lowerHex(const Bytes& bytes)
{
    static const char DIGITS[] = "0123456789abcdef";
    std::string text;
    for (unsigned char b : bytes) {
        text.push_back(DIGITS[b >> 4]);
        text.push_back(DIGITS[b & 0x0F]);
    }
    return text;
}

// The payload after the selector bytes, with the parameter's signature in
// front when asked (so that the fuzzer reaches the decoder at once).
Bytes payload(ObdParameter& parameter, unsigned int protocol, bool withSignature,
              const uint8_t* data, size_t size)
{
    Bytes bytes;
    if (withSignature) {
        Bytes request;
        parameter.getRequest(protocol, request); // some signatures follow the request
        parameter.getSignature(bytes);
    }
    bytes.insert(bytes.end(), data, data + size);
    return bytes;
}

} // namespace

bool FuzzEntries::transporter(const uint8_t* data, size_t size)
{
    if (size == 0)
        return true;
    const unsigned int protocol = data[0] & 0x07;
    const bool headers = (data[0] & 0x08) != 0;
    const std::string reply(reinterpret_cast<const char*>(data + 1), size - 1);

    FakeScantool tool(protocol, headers, true);
    FakeProxy proxy(&tool);
    std::unique_ptr<ObdParameter> parameter;
    switch ((data[0] >> 4) & 0x07) {
    case 1: parameter.reset(new SupportedVehicleInfos(0x00)); break;
    case 2: parameter.reset(new SupportedTids(0x00, 1)); break;
    case 3: parameter.reset(new StoredTroubleCodes); break;
    case 4: parameter.reset(ParameterFactory::create(0x0C)); break;
    case 5: parameter.reset(new VehicleIdentificationNumber); break;
    case 6: parameter.reset(new MonitorTestResult(0x01)); break;
    case 7: parameter.reset(new EcuName); break;
    default: parameter.reset(new SupportedPids(1, 0x00)); break;
    }
    Bytes request;
    parameter->getRequest(protocol, request);
    tool.setReply(lowerHex(request), reply);
    const ExchangeResult result = ObdTransporter().execute(&proxy, parameter.get());
    return result == ER_OK || result == ER_NO_DATA || result == ER_ERROR;
}

bool FuzzEntries::canResponse(const uint8_t* data, size_t size)
{
    if (size == 0)
        return true;
    CanResponse response((data[0] & 1) ? PROTOCOL_CAN_29BIT : PROTOCOL_CAN_11BIT);
    size_t at = 1;
    while (at < size) {
        const size_t length = std::min<size_t>(data[at] % 9, size - at - 1);
        ++at;
        Bytes frame(data + at, data + at + length);
        at += length;
        const int used = response.addFrame(frame);
        if (used != -1 && (used < 1 || used > 8 || static_cast<size_t>(used) > frame.size()))
            return false;
    }
    Bytes out;
    return !response.getPayload(out) || out.size() == response.getLength();
}

bool FuzzEntries::pid(const uint8_t* data, size_t size)
{
    if (size < 2)
        return true;
    const std::vector<unsigned char> pids = ParameterFactory::knownPids();
    const unsigned char mode = (data[1] & 1) ? 2 : 1;
    const unsigned int protocol = ((data[1] >> 1) & 0x07) % 6;
    std::unique_ptr<PowertrainParameter> parameter(
        ParameterFactory::create(pids[data[0] % pids.size()], mode));
    if (!parameter)
        return true;
    const Bytes bytes = payload(*parameter, protocol, (data[1] & 0x80) != 0, data + 2, size - 2);
    parameter->parse(protocol, ECU_ID, bytes);
    Ecu ecu(ECU_ID, protocol, "fuzz");
    Ecu other(ECU_ID + 1, protocol, "fuzz");
    for (UnitSystem system : { US_METRIC, US_IMPERIAL }) {
        std::vector<std::string> texts;
        parameter->getFormattedValues(ecu, system, texts);
        parameter->getFormattedValues(other, system, texts);
    }
    std::vector<SensorInfo*> infos;
    parameter->getSensorInfos(infos);
    parameter->getName(ecu);
    return true;
}

bool FuzzEntries::troubleCodes(const uint8_t* data, size_t size)
{
    if (size < 1)
        return true;
    const unsigned int protocol = (data[0] & 0x07) % 6;
    const bool withSignature = (data[0] & 0x80) != 0;
    Ecu ecu(ECU_ID, protocol, "fuzz");
    const unsigned int kind = (data[0] >> 3) & 0x03;
    if (kind == 2) {
        ClearTroubleCodes clearCodes;
        clearCodes.parse(protocol, ECU_ID, payload(clearCodes, protocol, withSignature, data + 1, size - 1));
        clearCodes.isCleared(ecu);
        return true;
    }
    StoredTroubleCodes stored;
    PendingTroubleCodes pending;
    DtcParameter& parameter = kind == 1 ? static_cast<DtcParameter&>(pending)
                                        : static_cast<DtcParameter&>(stored);
    parameter.parse(protocol, ECU_ID, payload(parameter, protocol, withSignature, data + 1, size - 1));
    std::vector<Dtc> codes;
    parameter.getDtcs(ecu, codes);
    for (const Dtc& code : codes) {
        // Five characters: a letter and four hex digits.
        if (code.getCode().size() != 5)
            return false;
        code.getDescription();
        code.getCategory();
    }
    return true;
}

bool FuzzEntries::vehicleInfo(const uint8_t* data, size_t size)
{
    if (size < 2)
        return true;
    const unsigned int protocol = (data[1] & 0x07) % 6;
    const bool withSignature = (data[0] & 0x80) != 0;
    Ecu ecu(ECU_ID, protocol, "fuzz");
    auto feed = [&](ObdParameter& parameter) {
        parameter.parse(protocol, ECU_ID, payload(parameter, protocol, withSignature, data + 2, size - 2));
    };
    switch (data[0] & 0x07) {
    case 0: { VehicleIdentificationNumber p; feed(p); p.hasVin(ecu); p.getVin(ecu); break; }
    case 1: { CalibrationIds p; feed(p); p.getCalibrationIds(ecu); break; }
    case 2: { CalibrationVerificationNumbers p; feed(p); p.getVerificationNumberTexts(ecu); break; }
    case 3: {
        EcuName p;
        feed(p);
        p.hasName(ecu);
        p.getShortName(ecu);
        p.getLongName(ecu);
        p.getFullName(ecu);
        break;
    }
    case 4: { PerformanceTrackingSpark p; feed(p); p.getCounters(ecu); break; }
    case 5: { PerformanceTrackingCompression p; feed(p); p.getCounters(ecu); break; }
    default: {
        SupportedVehicleInfos p(0x00);
        feed(p);
        std::vector<unsigned char> list;
        p.getSupported(ecu, list);
        break;
    }
    }
    return true;
}

bool FuzzEntries::monitorTests(const uint8_t* data, size_t size)
{
    if (size < 2)
        return true;
    const unsigned int protocol = (data[1] & 0x07) % 6;
    MonitorTestResult result(data[0]);
    result.parse(protocol, ECU_ID, payload(result, protocol, (data[1] & 0x80) != 0, data + 2, size - 2));
    Ecu ecu(ECU_ID, protocol, "fuzz");
    for (UnitSystem system : { US_METRIC, US_IMPERIAL }) {
        result.setUnitSystem(system);
        for (unsigned char mid : result.getMids(ecu)) {
            for (const auto& item : result.getTestItems(ecu, mid)) {
                if (!item)
                    return false;
                item->getValueText();
                item->getMinimumText();
                item->getMaximumText();
                item->isPassed();
                item->getTidName();
            }
        }
    }
    return true;
}

bool FuzzEntries::oxygenTests(const uint8_t* data, size_t size)
{
    if (size < 2)
        return true;
    const unsigned int protocol = (data[1] & 0x07) % 6;
    OxygenSensorTestResult result(data[0]);
    result.parse(protocol, ECU_ID, payload(result, protocol, (data[1] & 0x80) != 0, data + 2, size - 2));
    Ecu ecu(ECU_ID, protocol, "fuzz");
    for (OxygenSensorLocation location : result.getSensors(ecu)) {
        std::shared_ptr<OxygenSensorTestItem> item = result.getItem(ecu, location);
        if (!item)
            return false;
        item->getValueText();
        item->getMinimumText();
        item->getMaximumText();
        item->isPassed();
    }
    return true;
}

bool FuzzEntries::scantool(const uint8_t* data, size_t size)
{
    const Bytes all(data, data + size);
    const int error = ElmScantool::findAdapterError(all);
    if (error < ElmScantool::ERROR_NO_DATA || error > ElmScantool::ERROR_NONE || error == 1)
        return false;

    // Each prompt-ended piece as a message that is waiting already.
    FakeConnection connection;
    std::string reply;
    for (unsigned char c : all) {
        reply.push_back(static_cast<char>(c));
        if (c == '>') {
            connection.push(reply);
            reply.clear();
        }
    }
    if (!reply.empty())
        connection.push(reply);
    std::unique_ptr<ElmScantool> tool(ElmScantool::create(&connection));
    tool->reset();
    tool->identify();
    tool->readDescription();
    tool->initialize(0);
    tool->identifyProtocol();
    tool->setHeadersOn();
    Bytes response;
    tool->sendCommand({ '0', '1', '0', '0' }, response, 100);
    const DeviceInfo info = tool->getDeviceInfo();
    // Texts pass through QString: a byte that is not UTF-8 becomes U+FFFD,
    // three bytes long, so a text may grow up to three times.
    if (info.name.size() > 3 * size || info.version.size() > 3 * size ||
        info.description.size() > 3 * size)
        return false;
    return tool->getProtocol() <= PROTOCOL_UNKNOWN;
}

FuzzEntries::Entry FuzzEntries::byName(const std::string& name)
{
    if (name == "transporter") return &FuzzEntries::transporter;
    if (name == "canresponse") return &FuzzEntries::canResponse;
    if (name == "pids") return &FuzzEntries::pid;
    if (name == "troublecodes") return &FuzzEntries::troubleCodes;
    if (name == "vehicleinfo") return &FuzzEntries::vehicleInfo;
    if (name == "monitortests") return &FuzzEntries::monitorTests;
    if (name == "oxygentests") return &FuzzEntries::oxygenTests;
    if (name == "scantool") return &FuzzEntries::scantool;
    return nullptr;
}

std::vector<std::string> FuzzEntries::names()
{
    return { "transporter", "canresponse", "pids", "troublecodes",
             "vehicleinfo", "monitortests", "oxygentests", "scantool" };
}
