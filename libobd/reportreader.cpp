#include "reportreader.h"

#include "ecu.h"
#include "imonitortestitem.h"
#include "iobdproxy.h"
#include "iscantool.h"
#include "obdtransporter.h"
#include "sensorinfo.h"
#include "unittable.h"
#include "parameters/calibrationids.h"
#include "parameters/monitortestresult.h"
#include "parameters/pendingtroublecodes.h"
#include "parameters/storedtroublecodes.h"
#include "parameters/vehicleidentificationnumber.h"
#include "powertrain/freezeframetroublecode.h"
#include "powertrain/monitorstatus.h"
#include "powertrain/parameterfactory.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <memory>

namespace Obd {

namespace {

// True when the ECU's answer was read; else the reason in why.
bool wasRead(const ObdParameter& parameter, const Ecu& ecu, std::string& why)
{
    const ReadStatus status = parameter.readStatus(ecu.getId());
    why = status.ok() ? std::string() : status.reason;
    return status.ok();
}

std::string hexByte(unsigned int value)
{
    char text[8];
    std::snprintf(text, sizeof text, "%02X", value);
    return text;
}

std::vector<HtmlReport::Code> codesOf(const DtcParameter& parameter, const Ecu& ecu)
{
    std::vector<Dtc> found;
    parameter.getDtcs(ecu, found);
    std::vector<HtmlReport::Code> codes;
    for (const Dtc& dtc : found)
        codes.push_back({dtc.getCode(), dtc.getDescription()});
    return codes;
}

// Tests on older protocols have one limit only.
std::string limits(const std::string& minimum, const std::string& maximum)
{
    if (minimum.empty())
        return maximum.empty() ? std::string() : "at most " + maximum;
    return maximum.empty() ? "at least " + minimum : minimum + " .. " + maximum;
}

} // namespace

ReportReader::ReportReader(IObdProxy* proxy)
    : m_proxy(proxy)
{
}

HtmlReport::Data ReportReader::read()
{
    IObdProxy* proxy = m_proxy;
    // A parameter left unexecuted says for every ECU that it was not read.
    auto execute = [&](ObdParameter& parameter) {
        if (m_stop && m_stop())
            return false;
        return ObdTransporter().execute(proxy, &parameter) == ER_OK;
    };
    HtmlReport::Data data;
    char date[64];
    const std::time_t now = std::time(nullptr);
    std::tm local;
    localtime_r(&now, &local);
    std::strftime(date, sizeof date, "%Y-%m-%d %H:%M %Z", &local);
    data.date = date;
    IScantool* scantool = proxy->getScantool();
    if (!scantool)
        return data;
    const DeviceInfo device = scantool->getDeviceInfo();
    data.adapter = device.name + (device.version.empty() ? "" : " " + device.version) +
                   (device.description.empty() ? "" : " (" + device.description + ")");
    data.protocol = scantool->getProtocolName();
    const bool can = isCanProtocol(scantool->getProtocol());

    std::vector<EcuPtr> ecus;
    proxy->getEcus(ecus);
    auto any = [&](unsigned int service, unsigned char number) {
        return std::any_of(ecus.begin(), ecus.end(),
                           [&](const EcuPtr& e) { return e->isSupported(service, number); });
    };
    VehicleIdentificationNumber vin;
    CalibrationIds calibrations;
    StoredTroubleCodes stored;
    PendingTroubleCodes pending;
    MonitorStatus status;
    // Each ECU's own read status then says whether its part could be read.
    if (any(9, 0x02))
        execute(vin);
    if (any(9, 0x04))
        execute(calibrations);
    execute(stored);
    execute(pending);
    if (any(1, 0x01))
        execute(status);
    std::string why;

    for (const EcuPtr& ecu : ecus) {
        HtmlReport::Ecu item;
        item.id = ecu->getIdText();
        item.name = ecu->getShortName() + " - " + ecu->getLongName();
        if (ecu->isSupported(9, 0x02)) {
            if (wasRead(vin, *ecu, item.vinWhy) && vin.hasVin(*ecu))
                item.vin = vin.getVin(*ecu);
            else if (item.vinWhy.empty())
                item.vinWhy = "empty VIN";
        }
        if (ecu->isSupported(9, 0x04) && wasRead(calibrations, *ecu, why))
            item.calibrationIds = calibrations.getCalibrationIds(*ecu);
        item.codesRead = wasRead(stored, *ecu, item.codesWhy);
        if (item.codesRead)
            item.stored = codesOf(stored, *ecu);
        item.pendingRead = wasRead(pending, *ecu, item.pendingWhy);
        if (item.pendingRead)
            item.pending = codesOf(pending, *ecu);

        item.hasStatus = ecu->isSupported(1, 0x01);
        item.statusRead = item.hasStatus && wasRead(status, *ecu, item.statusWhy);
        if (item.statusRead) {
            item.mil = status.isMilOn(*ecu);
            item.confirmed = static_cast<int>(status.getDtcCount(*ecu));
            const bool diesel = status.isCompressionIgnition(*ecu);
            for (unsigned int id = 0; id <= 15; ++id) {
                // Monitors 3..9 belong to spark ignition, 10..15 to compression.
                if ((id >= 3 && id <= 9 && diesel) || (id >= 10 && !diesel))
                    continue;
                HtmlReport::MonitorState state = !status.isSupported(*ecu, id) ? HtmlReport::MONITOR_NOT_SUPPORTED
                                                 : status.isComplete(*ecu, id) ? HtmlReport::MONITOR_COMPLETE
                                                                               : HtmlReport::MONITOR_INCOMPLETE;
                item.monitors.push_back({MonitorStatus::getMonitorName(id), state});
            }
        }

        // The frame is there when the ECU lists its code PID under service 02.
        item.hasFreezeFrame = ecu->isSupported(2, 0x02);
        if (item.hasFreezeFrame) {
            FreezeFrameTroubleCode code;
            execute(code);
            item.freezeFrameRead = wasRead(code, *ecu, item.freezeFrameWhy);
            if (item.freezeFrameRead)
                item.freezeFrameCode = code.getCode(*ecu);
            std::vector<unsigned char> pids;
            ecu->getSupported(2, pids);
            for (unsigned char pid : pids) {
                if (!item.freezeFrameRead || pid == 0x02 || pid % 0x20 == 0)
                    continue;
                std::unique_ptr<PowertrainParameter> value(ParameterFactory::create(pid, 2));
                if (!value)
                    continue;
                std::vector<std::string> texts;
                execute(*value);
                if (wasRead(*value, *ecu, why))
                    value->getFormattedValues(*ecu, US_METRIC, texts);
                std::vector<SensorInfo*> infos;
                value->getSensorInfos(infos);
                std::string text;
                for (size_t i = 0; i < texts.size(); ++i) {
                    std::string unit = i < infos.size() ? unitText(infos[i]->getUnit(US_METRIC)) : "";
                    text += (i ? ", " : "") + texts[i] + (unit.empty() ? "" : " " + unit);
                }
                item.freezeFrame.push_back(
                    {value->getName(*ecu), text.empty() ? "could not read" + (why.empty() ? "" : " (" + why + ")") : text});
            }
        }

        std::vector<unsigned char> ids;
        ecu->getSupported(6, ids);
        ids.erase(std::remove_if(ids.begin(), ids.end(), [](unsigned char id) { return id % 0x20 == 0; }),
                  ids.end());
        item.hasTests = !ids.empty();
        for (unsigned char id : ids) {
            MonitorTestResult result(id);
            execute(result);
            if (!wasRead(result, *ecu, why)) {
                if (item.testsWhy.empty())
                    item.testsWhy = why;
                continue;
            }
            item.testsRead = true;
            for (unsigned char mid : result.getMids(*ecu)) {
                const std::string name =
                    can ? MonitorTestResult::getMidName(mid) : "TID $" + hexByte(mid);
                for (const auto& test : result.getTestItems(*ecu, mid)) {
                    const std::string unit = unitText(test->getUnit());
                    item.tests.push_back({name + " / " + test->getTidName(),
                                          test->getValueText() + (unit.empty() ? "" : " " + unit),
                                          limits(test->getMinimumText(), test->getMaximumText()),
                                          test->isPassed()});
                }
            }
        }
        data.ecus.push_back(item);
    }
    return data;
}

bool ReportReader::anyRead(const HtmlReport::Data& data)
{
    return std::any_of(data.ecus.begin(), data.ecus.end(),
                       [](const HtmlReport::Ecu& ecu) { return ecu.codesRead || ecu.statusRead; });
}

bool ReportReader::write(const HtmlReport::Data& data, const std::string& path)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << HtmlReport::render(data);
    file.close();
    return static_cast<bool>(file);
}

} // namespace Obd
