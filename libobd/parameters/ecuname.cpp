#include "ecuname.h"
#include "ecu.h"
#include "iscantool.h"
#include "trlog.h"
#include "vehicleinfoframes.h"

namespace Obd {

namespace {

// The 20 name characters:
//
//   0 .. 3         4     5 .. 19
//   +------------+-----+------------------------+
//   | ABBR (NUL) | '-' | name (NUL padded)      |
//   +------------+-----+------------------------+
//
// In the counted layout the delimiter is byte 7 of the message.
const size_t NAME_LENGTH = 20;
const size_t ABBREVIATION_LENGTH = 4;
const size_t DELIMITER = 4;
const size_t FRAMED_LENGTH = 5 * VehicleInfoFrames::FRAME_SIZE;

struct Module
{
    const char* abbreviation;
    const char* name;
};

// "All Wheel Driver" and "Four-Wheel Driver" are the texts as shown.
const Module MODULES[] = {
    { "ABS", "Anti-Lock Brake System (ABS) Control Module" },
    { "AFC", "Alternative Fuel Control Module" },
    { "AHC", "Auxiliary Heater Control Module" },
    { "AWD", "All Wheel Driver Control Module" },
    { "BCC", "Battery Charger Control Module" },
    { "BEC", "Battery Energy Control Module" },
    { "BSC", "Brake System Control Module" },
    { "CRC", "Cruise Control Module" },
    { "CTC", "Coolant Temperature Control Module" },
    { "DCD", "DC/DC Converter Control Module" },
    { "DMC", "Drive Motor Control Module" },
    { "EAC", "Electric A/C Compressor Control Module" },
    { "ECC", "Emissions Critical Control Module" },
    { "ECM", "Engine Control Module" },
    { "FAC", "Fuel Additive Control Module" },
    { "FIC", "Fuel Injector Control Module" },
    { "FPC", "Fuel Pump Control Module" },
    { "4WD", "Four-Wheel Driver Clutch Control Module" },
    { "GPC", "Glow Plug Control Module" },
    { "GSM", "Gear Shift Control Module" },
    { "HVA", "HVAC Control Module" },
    { "HPC", "Hybrid Powertrain Control Module" },
    { "IPC", "Instrument Panel Cluster (IPC) Control Module" },
    { "PCM", "Powertrain Control Module" },
    { "RDC", "Reductant Control Module" },
    { "SGC", "Starter / Generator Control Module" },
    { "TAC", "Throttle Actuator Control Module" },
    { "TCC", "Transfer Case Control Module" },
    { "TCM", "Transmission Control Module" },
};

} // namespace

EcuName::EcuName()
{
}

EcuName::~EcuName()
{
}

void EcuName::clear()
{
    m_names.clear();
}

void EcuName::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x09);
    request.push_back(INFO_TYPE);
}

void EcuName::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x49);
    signature.push_back(INFO_TYPE);
}

bool EcuName::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    using namespace VehicleInfoFrames;
    if (isCanProtocol(m_protocol)) {
        if (data.size() < COUNTED_HEADER + NAME_LENGTH) {
            OBD_ERROR << "Invalid number of data bytes: " << data.size();
            return false;
        }
        const std::vector<unsigned char> text(data.begin() + COUNTED_HEADER,
                                              data.begin() + COUNTED_HEADER + NAME_LENGTH);
        return decodeText(ecuId, text);
    }

    if (data.size() != FRAMED_LENGTH) {
        OBD_ERROR << "Invalid number of data bytes: " << data.size();
        return false;
    }
    std::vector<unsigned char> text;
    if (collectFrames(data, INFO_TYPE, text) != OK) {
        OBD_ERROR << "Invalid data received";
        return false;
    }
    return decodeText(ecuId, text);
}

// Without the delimiter the 20 characters cannot be split safely, so the
// whole trimmed text becomes the ECU's own name and the abbreviation stays
// empty (no module name is guessed from it).
bool EcuName::decodeText(unsigned int ecuId, const std::vector<unsigned char>& text)
{
    using VehicleInfoFrames::trimmedText;
    Name name;
    if (text.size() > DELIMITER && text[DELIMITER] == '-') {
        name.abbreviation = trimmedText(text, 0, ABBREVIATION_LENGTH);
        name.text = trimmedText(text, DELIMITER + 1, NAME_LENGTH - DELIMITER - 1);
    } else {
        OBD_DEBUG << "No delimeter found!";
        name.text = trimmedText(text, 0, NAME_LENGTH);
    }
    m_names[ecuId] = name;
    return true;
}

const EcuName::Name* EcuName::find(const Ecu& ecu) const
{
    auto it = m_names.find(ecu.getId());
    if (it == m_names.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return nullptr;
    }
    return &it->second;
}

bool EcuName::hasName(const Ecu& ecu) const
{
    return m_names.count(ecu.getId()) != 0;
}

std::string EcuName::getAbbreviation(const Ecu& ecu) const
{
    const Name* name = find(ecu);
    return name ? name->abbreviation : std::string();
}

std::string EcuName::getText(const Ecu& ecu) const
{
    const Name* name = find(ecu);
    return name ? name->text : std::string();
}

std::string EcuName::getFullName(const Ecu& ecu) const
{
    const Name* name = find(ecu);
    return name ? fullNameOf(name->abbreviation) : std::string();
}

std::string EcuName::getShortName(const Ecu& ecu) const
{
    return getAbbreviation(ecu);
}

std::string EcuName::getLongName(const Ecu& ecu) const
{
    const Name* name = find(ecu);
    if (!name)
        return std::string();
    const std::string full = fullNameOf(name->abbreviation);
    return full.empty() ? name->text : full;
}

void EcuName::getEcuIds(std::vector<unsigned int>& ids) const
{
    for (const auto& entry : m_names)
        ids.push_back(entry.first);
}

std::string EcuName::fullNameOf(const std::string& abbreviation)
{
    for (const Module& module : MODULES) {
        if (abbreviation == module.abbreviation)
            return module.name;
    }
    return std::string();
}

} // namespace Obd
