// Service 09 vehicle information: VIN, calibration ids, verification
// numbers, ECU name and the performance counters, each in the counted layout
// of CAN (49 type count data) and the framed layout of the older protocols
// (49 type message-number four-bytes, one line per message).

#include "ecu.h"
#include "infotestbytes.h"
#include "iscantool.h"
#include "logcapture.h"
#include "parameters/calibrationids.h"
#include "parameters/calibrationverificationnumbers.h"
#include "parameters/ecuname.h"
#include "parameters/performancetrackingcompression.h"
#include "parameters/performancetrackingspark.h"
#include "parameters/vehicleidentificationnumber.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

using namespace Obd;
using InfoTest::hexBytes;
using InfoTest::textHex;

namespace {

const unsigned int ISO9141 = PROTOCOL_ISO9141;
const unsigned int KWP = PROTOCOL_KWP2000;
const unsigned int J1850 = PROTOCOL_J1850;
const unsigned int CAN11 = PROTOCOL_CAN_11BIT;
const unsigned int CAN29 = PROTOCOL_CAN_29BIT;

const unsigned int ECU_ID = 0x7E8;

Ecu ecu(unsigned int id = ECU_ID)
{
    return Ecu(id, CAN11, "");
}

enum Kind { VIN, CALID, CVN, NAME, SPARK, COMPRESSION };

std::unique_ptr<ObdParameter> make(Kind kind)
{
    switch (kind) {
    case VIN:
        return std::unique_ptr<ObdParameter>(new VehicleIdentificationNumber);
    case CALID:
        return std::unique_ptr<ObdParameter>(new CalibrationIds);
    case CVN:
        return std::unique_ptr<ObdParameter>(new CalibrationVerificationNumbers);
    case NAME:
        return std::unique_ptr<ObdParameter>(new EcuName);
    case SPARK:
        return std::unique_ptr<ObdParameter>(new PerformanceTrackingSpark);
    default:
        return std::unique_ptr<ObdParameter>(new PerformanceTrackingCompression);
    }
}

std::string joined(const std::vector<std::string>& parts)
{
    std::string out;
    for (size_t i = 0; i < parts.size(); ++i)
        out += (i ? "|" : "") + parts[i];
    return out;
}

// What the parameter holds for the ECU, "" for nothing.
std::string shown(const ObdParameter& parameter, const Ecu& ecu)
{
    if (auto vin = dynamic_cast<const VehicleIdentificationNumber*>(&parameter))
        return vin->hasVin(ecu) ? vin->getVin(ecu) : "";
    if (auto ids = dynamic_cast<const CalibrationIds*>(&parameter))
        return joined(ids->getCalibrationIds(ecu));
    if (auto cvn = dynamic_cast<const CalibrationVerificationNumbers*>(&parameter))
        return joined(cvn->getVerificationNumberTexts(ecu));
    if (auto name = dynamic_cast<const EcuName*>(&parameter)) {
        if (!name->hasName(ecu))
            return "";
        return joined({ name->getAbbreviation(ecu), name->getText(ecu), name->getFullName(ecu), name->getLongName(ecu) });
    }
    std::string out;
    for (const auto& counter : dynamic_cast<const PerformanceTracking&>(parameter).getCounters(ecu)) {
        char text[16];
        std::snprintf(text, sizeof(text), "%s%u:%04X", out.empty() ? "" : " ", counter.first, counter.second);
        out += text;
    }
    return out;
}

// Counter i holds 0x0101 * i + 1, so that both bytes matter.
std::string counterHex(unsigned int first, unsigned int count)
{
    std::string out;
    for (unsigned int i = first; i < first + count; ++i) {
        char text[16];
        std::snprintf(text, sizeof(text), " %02X %02X", (0x0101 * i + 1) >> 8, (0x0101 * i + 1) & 0xFF);
        out += text;
    }
    return out;
}

std::string counters(unsigned int count)
{
    std::string out;
    for (unsigned int i = 0; i < count; ++i) {
        char text[16];
        std::snprintf(text, sizeof(text), "%s%u:%04X", i ? " " : "", i, 0x0101 * i + 1);
        out += text;
    }
    return out;
}

// The framed layout: four data bytes per line, messages numbered from 1.
std::string framed(unsigned char infoType, const std::string& hex)
{
    const std::vector<unsigned char> bytes = hexBytes(hex);
    std::string out;
    for (size_t i = 0; i + 4 <= bytes.size(); i += 4) {
        char text[40];
        std::snprintf(text, sizeof(text), " 49 %02X %02X %02X %02X %02X %02X", infoType,
                      static_cast<unsigned int>(i / 4 + 1), bytes[i], bytes[i + 1], bytes[i + 2], bytes[i + 3]);
        out += text;
    }
    return out;
}

struct InfoRow
{
    const char* name;
    Kind kind;
    unsigned int protocol;
    std::string hex;
    std::string shown;       // what is held afterwards
    const char* log = nullptr; // an error text: the answer is refused
};

} // namespace

TEST(VehicleInfo, CountedAndFramedAnswers)
{
    // SAE J1979 example VIN; "ECM" padded to 4, '-', "EngineControl" padded to 15.
    const std::string vin = textHex("1D4GP00R55B123456", 17);
    const std::string ecm = textHex("ECM", 4) + " 2D" + textHex("EngineControl", 15);
    const std::string id1 = textHex("JMB*36761500", 16);
    const std::string id2 = textHex("JMB*47872611", 16);
    const std::string vinFramed = framed(0x02, " 00 00 00" + vin);
    const std::string f = vinFramed.substr(0, 21 * 2); // "49 02 01 00 00 00 31" and "49 02 02 ..."
    const std::string ecmModule = "ECM|EngineControl|Engine Control Module|Engine Control Module";
    const InfoRow rows[] = {
        { "VIN, CAN: 49 02 01 and 17 characters", VIN, CAN11, "49 02 01" + vin, "1D4GP00R55B123456" },
        { "VIN, CAN 29-bit with a trailing pad byte", VIN, CAN29, "49 02 01" + vin + " 00", "1D4GP00R55B123456" },
        { "VIN, ISO 9141: five lines, the first padded with three NULs", VIN, ISO9141, vinFramed, "1D4GP00R55B123456" },
        { "VIN, J1850: lines placed by message number", VIN, J1850,
          vinFramed.substr(2 * 21) + vinFramed.substr(0, 2 * 21), "1D4GP00R55B123456" },
        { "VIN, CAN: NUL padding trimmed, bytes after the 17 ignored", VIN, CAN11,
          "49 02 01 00 00" + textHex("1D4GP00R55B12345", 16), "1D4GP00R55B1234" },
        { "VIN, CAN 19 bytes", VIN, CAN11, "49 02 01" + textHex("1D4GP00R55B12345", 16), "", "Invalid number of data bytes: 19" },
        { "VIN, ISO 9141 four lines: 28 bytes", VIN, ISO9141, vinFramed.substr(0, 4 * 21), "", "Invalid number of data bytes: 28" },
        { "VIN, ISO 9141 counted: 20 bytes", VIN, ISO9141, "49 02 01" + vin, "", "Invalid number of data bytes: 20" },
        { "VIN, third line answers service 08", VIN, ISO9141, f + " 48 02 03 30 30 52 35" + vinFramed.substr(3 * 21), "",
          "Invalid data received" },
        { "VIN, message number 2 twice", VIN, KWP, f + " 49 02 02 30 30 52 35" + vinFramed.substr(3 * 21), "", "Invalid data received" },
        { "VIN, message number 6 of 5", VIN, ISO9141, vinFramed.substr(0, 4 * 21) + " 49 02 06 33 34 35 36", "", "Invalid data received" },
        { "VIN, answer to info type 04", VIN, CAN11, "49 04 01" + vin, "", "Signature mismatch" },
        { "calibration id, CAN: one of 16 bytes", CALID, CAN11, "49 04 01" + id1, "JMB*36761500" },
        { "calibration ids, CAN 29-bit: two", CALID, CAN29, "49 04 02" + id1 + id2, "JMB*36761500|JMB*47872611" },
        { "calibration ids, KWP: two in eight lines", CALID, KWP, framed(0x04, id1 + id2), "JMB*36761500|JMB*47872611" },
        { "calibration ids, CAN: one and a half", CALID, CAN11, "49 04 02" + id1 + textHex("JMB", 8), "", "Invalid number of data bytes: 27" },
        { "calibration id, ISO 9141: one line", CALID, ISO9141, framed(0x04, id1).substr(0, 21), "", "Invalid number of data bytes: 7" },
        { "calibration id, KWP: message numbers 1 1 2 3", CALID, KWP,
          framed(0x04, id1).substr(0, 21) + framed(0x04, id1).substr(0, 63), "", "Invalid data received" },
        { "verification numbers, CAN: two of 4 bytes", CVN, CAN11, "49 06 02 17 91 BC 82 16 E0 62 BE", "1791BC82|16E062BE" },
        { "verification numbers, J1850: two lines in reverse order", CVN, J1850,
          "49 06 02 16 E0 62 BE 49 06 01 17 91 BC 82", "1791BC82|16E062BE" },
        { "verification number, CAN: leading zeros kept", CVN, CAN11, "49 06 01 00 00 0A 0B", "00000A0B" },
        { "verification numbers, CAN: one and a half", CVN, CAN11, "49 06 02 17 91 BC 82 16 E0", "", "Invalid number of data bytes: 9" },
        { "verification number, ISO 9141: 8 bytes", CVN, ISO9141, "49 06 01 17 91 BC 82 00", "", "Invalid number of data bytes: 8" },
        { "verification numbers, KWP: second line of service 08", CVN, KWP,
          "49 06 01 17 91 BC 82 48 06 02 16 E0 62 BE", "", "Invalid data received" },
        { "ECU name, CAN: ECM-EngineControl", NAME, CAN11, "49 0A 01" + ecm, ecmModule },
        { "ECU name, ISO 9141: five lines", NAME, ISO9141, framed(0x0A, ecm), ecmModule },
        { "ECU name, CAN 29-bit: 4WD and spaces", NAME, CAN29, "49 0A 01" + textHex("4WD ", 4) + " 2D" + textHex("  Clutch", 15),
          "4WD|Clutch|Four-Wheel Driver Clutch Control Module|Four-Wheel Driver Clutch Control Module" },
        { "ECU name, abbreviation not known", NAME, CAN11, "49 0A 01" + textHex("XYZ", 4) + " 2D" + textHex("Mystery", 15),
          "XYZ|Mystery||Mystery" },
        { "ECU name with '-' one byte late: all of it is the text", NAME, CAN11, "49 0A 01" + textHex("ECMXY-Engine", 20),
          "|ECMXY-Engine||ECMXY-Engine" },
        { "ECU name, KWP: five lines without '-'", NAME, KWP, framed(0x0A, textHex("BodyComputerUnit!!! ", 20)),
          "|BodyComputerUnit!!!||BodyComputerUnit!!!" },
        { "ECU name, CAN: 22 bytes", NAME, CAN11, "49 0A 01" + textHex("ECM", 4) + " 2D" + textHex("Engine", 14), "",
          "Invalid number of data bytes: 22" },
        { "ECU name, KWP: fifth line of info type 0B", NAME, KWP,
          framed(0x0A, ecm).substr(0, 4 * 21) + " 49 0B 05 00 00 00 00", "", "Invalid data received" },
        { "spark counters, CAN: 20 of 2 bytes", SPARK, CAN11, "49 08 14" + counterHex(0, 20), counters(20) },
        { "spark counters, CAN: 16, the fewest", SPARK, CAN11, "49 08 10" + counterHex(0, 16), counters(16) },
        { "spark counters, CAN: a 21st is dropped", SPARK, CAN11, "49 08 15" + counterHex(0, 21), counters(20) },
        { "spark counters, ISO 9141: ten lines of two", SPARK, ISO9141, framed(0x08, counterHex(0, 20)), counters(20) },
        { "spark counters, J1850: eleven lines, 20 and 21 dropped", SPARK, J1850, framed(0x08, counterHex(0, 22)), counters(20) },
        { "spark counters, KWP: one line", SPARK, KWP, framed(0x08, counterHex(0, 2)), counters(2) },
        { "spark counters, CAN: 34 bytes", SPARK, CAN11, "49 08 10" + counterHex(0, 15) + " 00", "", "Invalid number of data bytes: 34" },
        { "spark counters, ISO 9141: second line of 0B", SPARK, ISO9141, framed(0x08, counterHex(0, 2)) + " 49 0B 02 00 01 00 02", "",
          "Invalid data received" },
        { "compression counters, CAN: 18", COMPRESSION, CAN11, "49 0B 12" + counterHex(0, 18), counters(18) },
        { "compression counters, CAN: 20, two dropped", COMPRESSION, CAN11, "49 0B 14" + counterHex(0, 20), counters(18) },
        { "compression counters, ISO 9141: nine lines", COMPRESSION, ISO9141, framed(0x0B, counterHex(0, 18)), counters(18) },
        { "compression counters, CAN 29-bit: 20 bytes", COMPRESSION, CAN29, "49 0B 12" + counterHex(0, 8) + " 00", "",
          "Invalid number of data bytes: 20" },
        { "compression counters, KWP: message number 3 of 2", COMPRESSION, KWP,
          framed(0x0B, counterHex(0, 2)) + " 49 0B 03 00 01 00 02", "", "Invalid data received" },
    };
    for (const InfoRow& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        std::unique_ptr<ObdParameter> parameter = make(row.kind);
        EXPECT_EQ(row.log == nullptr, parameter->parse(row.protocol, ECU_ID, hexBytes(row.hex)));
        EXPECT_EQ(row.shown, shown(*parameter, ecu()));
        if (row.log) {
            EXPECT_TRUE(LogCapture::instance().contains(row.log, LOG_ERROR)) << LogCapture::instance().dump();
        }
    }
}

TEST(VehicleInfo, AnswersAreKeptPerEcuAndARefusedOneChangesNothing)
{
    VehicleIdentificationNumber vin;
    ASSERT_TRUE(vin.parse(CAN11, 0x7E8, hexBytes("49 02 01" + textHex("1D4GP00R55B123456", 17))));
    ASSERT_TRUE(vin.parse(CAN11, 0x7E9, hexBytes("49 02 01" + textHex("WVWZZZ1JZXW000001", 17))));
    EXPECT_FALSE(vin.parse(CAN11, 0x7E8, hexBytes("49 02 01 31")));
    EXPECT_EQ("1D4GP00R55B123456", vin.getVin(ecu(0x7E8)));
    EXPECT_EQ("WVWZZZ1JZXW000001", vin.getVin(ecu(0x7E9)));
    LogCapture::instance().clear();
    EXPECT_EQ("", vin.getVin(ecu(0x7EA)));
    EXPECT_TRUE(LogCapture::instance().contains("invalid ECU id 2026", LOG_WARN));
    vin.clear();
    EXPECT_FALSE(vin.hasVin(ecu(0x7E8)));
}
