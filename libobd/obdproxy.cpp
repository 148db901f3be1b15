#include "obdproxy.h"
#include "clock.h"
#include "parameters/ecuname.h"
#include "iscantool.h"
#include "obdtransporter.h"
#include "powertrain/oxygensensorspresent.h"
#include "powertrain/saestandard.h"
#include "powertrain/supportedpids.h"
#include "parameters/supportedtids.h"
#include "parameters/supportedvehicleinfos.h"
#include "trlog.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace Obd {

namespace {

// The first request makes the adapter search for the vehicle's protocol.
const unsigned int SEARCH_TIMEOUT_MS = 8000;

std::string hex(unsigned int value, bool upper = false)
{
    std::ostringstream out;
    if (upper)
        out << std::uppercase;
    out << std::hex << value;
    return out.str();
}

std::string serviceLabel(unsigned char mode)
{
    switch (mode) {
    case 1: return "01 PIDs";
    case 2: return "02 PIDs";
    default: return "06 MIDs";
    }
}

bool contains(const std::vector<unsigned char>& list, unsigned int value)
{
    return value <= 0xFF && std::find(list.begin(), list.end(), value) != list.end();
}

} // namespace

ObdProxy::ObdProxy()
    : m_scantool(nullptr)
{
}

ObdProxy::~ObdProxy()
{
}

bool ObdProxy::execute(ObdParameter& parameter)
{
    return ObdTransporter().execute(this, &parameter) == ER_OK;
}

bool ObdProxy::initialize(IScantool* scantool)
{
    m_scantool = scantool;
    if (!findEcus())
        return false;
    if (!findSupportedPids(1))
        return false;
    findSupportedPids(2);
    findSupportedPids(6);
    findSupportedInfoTypes();
    findObdStandard();
    findEcuNames();
    // Service 05 does not exist on CAN.
    if (!m_ecus.empty() && !isCanProtocol(m_ecus.front()->getProtocol()))
        findOxygenSensors();
    return true;
}

bool ObdProxy::findEcus()
{
    if (!m_scantool || !m_scantool->isInitialized())
        return false;
    unsigned int protocol = m_scantool->getProtocol();
    SupportedPids probe(1, 0x00);
    std::vector<unsigned char> request;
    probe.getRequest(protocol, request);
    const std::string text = ObdTransporter::commandText(request);
    std::vector<unsigned char> command(text.begin(), text.end());
    std::vector<unsigned char> response;
    if (!m_scantool->sendCommand(command, response, SEARCH_TIMEOUT_MS)) {
        OBD_ERROR << "empty response";
        return false;
    }
    if (!m_scantool->identifyProtocol()) {
        OBD_ERROR << "Failed to identify protocol";
        return false;
    }
    if (!m_scantool->setHeadersOn()) {
        OBD_ERROR << "Failed to turn headers on";
        return false;
    }
    protocol = m_scantool->getProtocol();
    std::string protocolName = m_scantool->getProtocolName();

    SupportedPids supported(1, 0x00);
    if (!execute(supported)) {
        OBD_ERROR << "Failed to get available ECUs";
        return false;
    }
    std::vector<unsigned int> ids;
    supported.getEcuIds(ids);
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    for (unsigned int id : ids) {
        OBD_DEBUG << "Found ECU: " << id << " with protocol " << protocol;
        m_ecus.push_back(std::make_shared<Ecu>(id, protocol, protocolName));
    }
    return !m_ecus.empty();
}

bool ObdProxy::findSupportedPids(unsigned char mode)
{
    const std::string label = serviceLabel(mode);
    bool result = true;
    std::vector<unsigned char> combined;
    SupportedPids first(mode, 0x00);
    if (execute(first)) {
        for (const EcuPtr& ecu : m_ecus) {
            std::vector<unsigned char> offsets;
            if (first.getSupported(*ecu, offsets)) {
                ecu->setSupported(mode, offsets);
                combined.insert(combined.end(), offsets.begin(), offsets.end());
            }
        }
    } else {
        OBD_ERROR << "Failed to get supported " << label << " 0x01 - 0x20";
        result = false;
    }
    // Bit 32 of a range says the next range exists.
    for (unsigned int base = 0x20, end = 0x40; contains(combined, base); base += 0x20, end += 0x20) {
        SupportedPids range(mode, static_cast<unsigned char>(base));
        if (execute(range)) {
            for (const EcuPtr& ecu : m_ecus) {
                std::vector<unsigned char> offsets;
                if (!ecu->isSupported(mode, static_cast<unsigned char>(base)) ||
                    !range.getSupported(*ecu, offsets))
                    continue;
                for (unsigned char n : offsets) {
                    unsigned char number = static_cast<unsigned char>((base + n) & 0xFF);
                    ecu->addSupported(mode, number);
                    combined.push_back(number);
                }
            }
        } else {
            OBD_ERROR << "Failed to get supported " << label << " 0x" << hex(base + 1) << " - 0x"
                      << hex(end);
        }
    }
    std::string title = "Supported " + std::string(mode == 6 ? "06 MIDS" : (mode == 1 ? "01 PIDS" : "02 PIDS"));
    for (const EcuPtr& ecu : m_ecus) {
        std::vector<unsigned char> list;
        ecu->getSupported(mode, list);
        logSupported(title + " for ECU ", ecu->getId(), list);
    }
    return result;
}

void ObdProxy::logSupported(const std::string& title, unsigned int ecuId,
                            const std::vector<unsigned char>& list)
{
    OBD_DEBUG << title << ecuId;
    std::ostringstream line;
    for (unsigned char number : list)
        line << "0x" << hex(number) << " ";
    OBD_DEBUG << line.str();
}

bool ObdProxy::findSupportedInfoTypes()
{
    SupportedVehicleInfos infos(0x00);
    if (!execute(infos)) {
        OBD_ERROR << "Failed to get supported 09 infotypes 0x01 - 0x20";
        return false;
    }
    for (const EcuPtr& ecu : m_ecus) {
        std::vector<unsigned char> list;
        if (infos.getSupported(*ecu, list))
            ecu->setSupported(9, list);
        logSupported("Supported 09 infotypes for ECU ", ecu->getId(), list);
    }
    return true;
}

bool ObdProxy::findObdStandard()
{
    SaeStandard standard;
    if (!execute(standard)) {
        OBD_ERROR << "Failed to get OBD standard";
        return false;
    }
    for (const EcuPtr& ecu : m_ecus)
        {
        unsigned int code = standard.getStandard(*ecu);
        ecu->setObdStandard(code, SaeStandard::standardText(code));
    }
    return true;
}

void ObdProxy::findEcuNames()
{
    bool anySupports = false;
    for (const EcuPtr& ecu : m_ecus)
        anySupports = anySupports || ecu->isSupported(9, 0x0A);
    EcuName names;
    bool available = anySupports && execute(names);
    unsigned int n = 1;
    for (const EcuPtr& ecu : m_ecus) {
        if (available && ecu->isSupported(9, 0x0A) && names.hasName(*ecu)) {
            ecu->setNames(names.getShortName(*ecu), names.getLongName(*ecu));
        } else {
            ecu->setNames("ECU#" + std::to_string(n),
                          "Engine Control Unit 0x" + hex(ecu->getId(), true));
        }
        ++n;
    }
}

void ObdProxy::findOxygenSensors()
{
    std::vector<unsigned int> layouts;
    for (const EcuPtr& ecu : m_ecus) {
        unsigned int layout = ecu->getOxygenSensorLayout();
        if (std::find(layouts.begin(), layouts.end(), layout) == layouts.end())
            layouts.push_back(layout);
    }
    std::vector<OxygenSensorLocation> sensors;
    bool anySucceeded = false;
    for (unsigned int layout : layouts) {
        if (layout == 0) {
            OBD_DEBUG << "No oxygen sensors banks";
            continue;
        }
        OxygenSensorsPresent13 present13;
        OxygenSensorsPresent1d present1d;
        OxygenSensorsPresent& present = layout == 1 ? static_cast<OxygenSensorsPresent&>(present13)
                                                    : static_cast<OxygenSensorsPresent&>(present1d);
        if (!execute(present)) {
            OBD_ERROR << "Failed to get supported O2 sensors";
            continue;
        }
        anySucceeded = true;
        for (const EcuPtr& ecu : m_ecus) {
            std::vector<OxygenSensorLocation> locations;
            if (!present.getLocations(*ecu, locations))
                continue;
            ecu->setOxygenSensors(locations);
            for (OxygenSensorLocation location : locations) {
                if (std::find(sensors.begin(), sensors.end(), location) == sensors.end())
                    sensors.push_back(location);
            }
        }
    }
    if (!anySucceeded) {
        OBD_ERROR << "Failed to query oxygen sensors present";
        return;
    }

    for (OxygenSensorLocation sensor : sensors) {
        std::vector<unsigned char> combined;
        SupportedTids first(0x00, sensor);
        if (execute(first)) {
            for (const EcuPtr& ecu : m_ecus) {
                std::vector<unsigned char> tids;
                if (!first.getSupported(*ecu, tids)) {
                    OBD_DEBUG << "No supported TIDs reported for ECU " << ecu->getId();
                    continue;
                }
                std::vector<OxygenSensorLocation> own = ecu->getOxygenSensors();
                if (std::find(own.begin(), own.end(), sensor) == own.end())
                    continue;
                // Tests 1 to 10 are the standard's fixed tests, always there.
                for (unsigned char tid = 1; tid <= 10; ++tid)
                    ecu->addSupportedTid(sensor, tid);
                ecu->setSupportedTids(sensor, tids);
                combined.insert(combined.end(), tids.begin(), tids.end());
            }
        } else {
            OBD_ERROR << "Failed to get supported 05 TIDs 0x01 - 0x20";
        }
        for (unsigned int base = 0x20, end = 0x40; contains(combined, base);
             base += 0x20, end += 0x20) {
            SupportedTids range(static_cast<unsigned char>(base), sensor);
            if (!execute(range)) {
                OBD_ERROR << "Failed to get supported 05 TIDs 0x" << hex(base + 1) << " - 0x"
                          << hex(end);
                continue;
            }
            for (const EcuPtr& ecu : m_ecus) {
                std::vector<unsigned char> tids;
                std::vector<unsigned char> own;
                ecu->getSupportedTids(sensor, own);
                if (!contains(own, base) || !range.getSupported(*ecu, tids))
                    continue;
                for (unsigned char n : tids) {
                    unsigned char tid = static_cast<unsigned char>((base + n) & 0xFF);
                    ecu->addSupportedTid(sensor, tid);
                    combined.push_back(tid);
                }
            }
        }
    }
    for (const EcuPtr& ecu : m_ecus) {
        OBD_DEBUG << "Supported 05 TIDS for ECU " << ecu->getId();
        for (const auto& entry : ecu->getSupportedTids()) {
            std::ostringstream line;
            line << " location " << oxygenSensorLocationName(static_cast<int>(entry.first)) << " ";
            for (unsigned char tid : entry.second)
                line << "0x" << hex(tid) << " ";
            OBD_DEBUG << line.str();
        }
    }
}

IScantool* ObdProxy::getScantool()
{
    return m_scantool;
}

bool ObdProxy::isInitialized()
{
    return m_scantool && m_scantool->isInitialized();
}

void ObdProxy::reset()
{
    m_scantool = nullptr;
    m_ecus.clear();
}

void ObdProxy::getEcus(std::vector<EcuPtr>& list)
{
    list = m_ecus;
}

EcuPtr ObdProxy::getFirstEcu()
{
    return m_ecus.empty() ? EcuPtr() : m_ecus.front();
}

EcuPtr ObdProxy::getEcu(unsigned int id)
{
    for (const EcuPtr& ecu : m_ecus) {
        if (ecu->getId() == id)
            return ecu;
    }
    return EcuPtr();
}

bool ObdProxy::sendCommand(const std::vector<unsigned char>& command,
                           std::vector<unsigned char>& response, unsigned int timeoutMs)
{
    CLock lock(m_mutex);
    return m_scantool && m_scantool->sendCommand(command, response, timeoutMs);
}

bool ObdProxy::sendObdCommand(const std::string& command, std::string& response,
                              unsigned int timeoutMs)
{
    CLock lock(m_mutex);
    return m_scantool && m_scantool->sendObdCommand(command, response, timeoutMs);
}

} // namespace Obd
