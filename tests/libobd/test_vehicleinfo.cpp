#include "ecu.h"
#include "infotestbytes.h"
#include "logcapture.h"
#include "parameters/calibrationids.h"
#include "parameters/calibrationverificationnumbers.h"
#include "parameters/ecuname.h"
#include "parameters/performancetrackingcompression.h"
#include "parameters/performancetrackingspark.h"
#include "parameters/vehicleidentificationnumber.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace Obd;
using InfoTest::hexBytes;
using InfoTest::textHex;

namespace {

const unsigned int ISO9141 = 0;
const unsigned int KWP = 1;
const unsigned int J1850 = 2;
const unsigned int CAN11 = 3;
const unsigned int CAN29 = 4;

const unsigned int ECU_ID = 0x7E8;

// SAE J1979 example VIN.
const char* const VIN = "1D4GP00R55B123456";
const char* const VIN_COUNTED = "49 02 01 31 44 34 47 50 30 30 52 35 35 42 31 32 33 34 35 36";
const char* const VIN_FRAMED = "49 02 01 00 00 00 31"
                               "49 02 02 44 34 47 50"
                               "49 02 03 30 30 52 35"
                               "49 02 04 35 42 31 32"
                               "49 02 05 33 34 35 36";

Ecu ecu(unsigned int id = ECU_ID)
{
    return Ecu(id, CAN11, "ISO 15765-4 (CAN 11/500)");
}

bool feed(ObdParameter& parameter, unsigned int protocol, const std::string& hex,
          unsigned int ecuId = ECU_ID)
{
    LogCapture::instance().clear();
    return parameter.parse(protocol, ecuId, hexBytes(hex));
}

std::string repeatHex(const std::string& hex, size_t times)
{
    std::string out;
    for (size_t i = 0; i < times; ++i)
        out += hex;
    return out;
}

} // namespace

// ---------------------------------------------------------------- requests

TEST(VehicleInfoRequest, RequestAndSignatureCarryTheInfoType)
{
    struct Row
    {
        const char* name;
        std::shared_ptr<ObdParameter> parameter;
        unsigned char infoType;
    };
    const Row rows[] = {
        { "VIN", std::make_shared<VehicleIdentificationNumber>(), 0x02 },
        { "calibration ids", std::make_shared<CalibrationIds>(), 0x04 },
        { "verification numbers", std::make_shared<CalibrationVerificationNumbers>(), 0x06 },
        { "spark counters", std::make_shared<PerformanceTrackingSpark>(), 0x08 },
        { "ECU name", std::make_shared<EcuName>(), 0x0A },
        { "compression counters", std::make_shared<PerformanceTrackingCompression>(), 0x0B },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<unsigned char> request { 0xAA };
        row.parameter->getRequest(CAN11, request);
        EXPECT_EQ((std::vector<unsigned char> { 0x09, row.infoType }), request);
        EXPECT_EQ(CAN11, row.parameter->getProtocol());
        std::vector<unsigned char> signature;
        row.parameter->getSignature(signature);
        EXPECT_EQ((std::vector<unsigned char> { 0x49, row.infoType }), signature);
    }
}

TEST(VehicleInfoRequest, AnswerToAnotherInfoTypeIsASignatureMismatch)
{
    VehicleIdentificationNumber vin;
    EXPECT_FALSE(feed(vin, CAN11, "49 04 01 31 44 34 47 50 30 30 52 35 35 42 31 32 33 34 35 36"));
    EXPECT_TRUE(LogCapture::instance().contains("Signature mismatch", LOG_ERROR));
    EXPECT_FALSE(vin.hasVin(ecu()));
}

// ---------------------------------------------------------------- VIN

TEST(VehicleIdentificationNumber, DecodesBothLayouts)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        std::string hex;
        const char* vin;
    };
    const std::string outOfOrder = "49 02 03 30 30 52 35"
                                   "49 02 01 00 00 00 31"
                                   "49 02 05 33 34 35 36"
                                   "49 02 02 44 34 47 50"
                                   "49 02 04 35 42 31 32";
    const Row rows[] = {
        { "CAN 11-bit, one item", CAN11, VIN_COUNTED, VIN },
        { "CAN 29-bit, one item", CAN29, VIN_COUNTED, VIN },
        { "CAN with a trailing pad byte", CAN11, std::string(VIN_COUNTED) + " 00", VIN },
        { "ISO 9141, five frames", ISO9141, VIN_FRAMED, VIN },
        { "KWP, five frames", KWP, VIN_FRAMED, VIN },
        { "J1850, frames out of order", J1850, outOfOrder, VIN },
        { "CAN, NUL padding trimmed, bytes after the 17 ignored", CAN11,
          "49 02 01 00 00 31 44 34 47 50 30 30 52 35 35 42 31 32 33 34 35", "1D4GP00R55B1234" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        VehicleIdentificationNumber vin;
        EXPECT_TRUE(feed(vin, row.protocol, row.hex));
        EXPECT_EQ(row.vin, vin.getVin(ecu()));
        EXPECT_FALSE(LogCapture::instance().contains("invalid ECU id"));
    }
}

TEST(VehicleIdentificationNumber, CountedLayoutLogsTheItemCount)
{
    VehicleIdentificationNumber vin;
    EXPECT_TRUE(feed(vin, CAN11, VIN_COUNTED));
    EXPECT_TRUE(LogCapture::instance().contains("Number of VIN items: 1", LOG_DEBUG));
}

TEST(VehicleIdentificationNumber, RefusesWrongLengthsAndBadFrames)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        std::string hex;
        const char* message;
    };
    const std::string framed(VIN_FRAMED);
    const size_t F = 20; // characters per frame in VIN_FRAMED
    const Row rows[] = {
        { "CAN, 19 bytes", CAN11, "49 02 01 31 44 34 47 50 30 30 52 35 35 42 31 32 33 34 35",
          "Invalid number of data bytes: 19" },
        { "CAN, signature only", CAN11, "49 02", "Invalid number of data bytes: 2" },
        { "ISO 9141, 28 bytes (four frames)", ISO9141, framed.substr(0, 4 * F),
          "Invalid number of data bytes: 28" },
        { "ISO 9141, 42 bytes (six frames)", ISO9141, framed + "49 02 06 00 00 00 00",
          "Invalid number of data bytes: 42" },
        { "ISO 9141, 20 counted bytes", ISO9141, VIN_COUNTED, "Invalid number of data bytes: 20" },
        { "third frame with a wrong response byte", ISO9141,
          framed.substr(0, 2 * F) + "48 02 03 30 30 52 35" + framed.substr(3 * F),
          "Invalid data received" },
        { "fourth frame of another info type", KWP,
          framed.substr(0, 3 * F) + "49 04 04 35 42 31 32" + framed.substr(4 * F),
          "Invalid data received" },
        { "message number 0", ISO9141, "49 02 00 00 00 00 31" + framed.substr(F),
          "Invalid data received" },
        { "message number 6 of 5", ISO9141, framed.substr(0, 4 * F) + "49 02 06 33 34 35 36",
          "Invalid data received" },
        { "message number 2 twice", ISO9141, framed.substr(0, 2 * F) + "49 02 02 30 30 52 35"
                                                 + framed.substr(3 * F),
          "Invalid data received" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        VehicleIdentificationNumber vin;
        EXPECT_FALSE(feed(vin, row.protocol, row.hex));
        EXPECT_TRUE(LogCapture::instance().contains(row.message, LOG_ERROR))
            << LogCapture::instance().dump();
        EXPECT_EQ("libobd/parameters/vehicleidentificationnumber.cpp",
                  LogCapture::instance().find(row.message).file);
        EXPECT_FALSE(vin.hasVin(ecu()));
    }
}

TEST(VehicleIdentificationNumber, FailedAnswerKeepsThePreviousVin)
{
    VehicleIdentificationNumber vin;
    ASSERT_TRUE(feed(vin, CAN11, VIN_COUNTED));
    EXPECT_FALSE(feed(vin, CAN11, "49 02 01 31"));
    EXPECT_EQ(VIN, vin.getVin(ecu()));
}

TEST(VehicleIdentificationNumber, TwoEcusAndAnUnknownOne)
{
    VehicleIdentificationNumber vin;
    ASSERT_TRUE(feed(vin, CAN11, VIN_COUNTED, 0x7E8));
    ASSERT_TRUE(feed(vin, CAN11, "49 02 01" + textHex("WVWZZZ1JZXW000001", 17), 0x7E9));
    EXPECT_EQ(VIN, vin.getVin(ecu(0x7E8)));
    EXPECT_EQ("WVWZZZ1JZXW000001", vin.getVin(ecu(0x7E9)));
    std::vector<unsigned int> ids;
    vin.getEcuIds(ids);
    EXPECT_EQ((std::vector<unsigned int> { 0x7E8, 0x7E9 }), ids);

    LogCapture::instance().clear();
    EXPECT_EQ("", vin.getVin(ecu(0x7EA)));
    EXPECT_TRUE(LogCapture::instance().contains("invalid ECU id 2026", LOG_WARN));

    vin.clear();
    EXPECT_FALSE(vin.hasVin(ecu(0x7E8)));
}

// ---------------------------------------------------------------- calibration ids

TEST(CalibrationIds, DecodesBothLayouts)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        std::string hex;
        std::vector<std::string> ids;
    };
    const std::string id1 = textHex("JMB*36761500", 16);
    const std::string id2 = textHex("JMB*47872611", 16);
    auto frames = [](const std::string& ids) {
        // Four data bytes per frame, numbered from 1 across all IDs.
        const std::vector<unsigned char> bytes = hexBytes(ids);
        std::string out;
        for (size_t i = 0; i < bytes.size() / 4; ++i) {
            std::vector<unsigned char> part(bytes.begin() + i * 4, bytes.begin() + i * 4 + 4);
            char number[4];
            std::snprintf(number, sizeof(number), "%02X", static_cast<unsigned int>(i + 1));
            out += std::string(" 49 04 ") + number;
            for (unsigned char b : part) {
                char text[4];
                std::snprintf(text, sizeof(text), " %02X", b);
                out += text;
            }
        }
        return out;
    };
    const Row rows[] = {
        { "CAN, one ID", CAN11, "49 04 01" + id1, { "JMB*36761500" } },
        { "CAN, two IDs", CAN29, "49 04 02" + id1 + id2, { "JMB*36761500", "JMB*47872611" } },
        { "ISO 9141, one ID in four frames", ISO9141, frames(id1), { "JMB*36761500" } },
        { "KWP, two IDs in eight frames", KWP, frames(id1 + id2),
          { "JMB*36761500", "JMB*47872611" } },
        { "CAN, all-NUL ID", CAN11, "49 04 01" + textHex("", 16), { "" } },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        CalibrationIds ids;
        EXPECT_TRUE(feed(ids, row.protocol, row.hex));
        EXPECT_EQ(row.ids, ids.getCalibrationIds(ecu()));
    }
    CalibrationIds ids;
    EXPECT_TRUE(feed(ids, CAN11, "49 04 02" + id1 + id2));
    EXPECT_TRUE(LogCapture::instance().contains("Number of CALID items: 2", LOG_DEBUG));
}

TEST(CalibrationIds, RefusesWrongLengthsAndBadFrames)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        std::string hex;
        const char* message;
    };
    const std::string id1 = textHex("JMB*36761500", 16);
    const std::string oneFrame = "49 04 01 4A 4D 42 2A";
    const Row rows[] = {
        { "CAN, 18 bytes", CAN11, "49 04 01" + textHex("JMB", 15),
          "Invalid number of data bytes: 18" },
        { "CAN, an ID and a half", CAN11, "49 04 02" + id1 + textHex("JMB", 8),
          "Invalid number of data bytes: 27" },
        { "CAN, empty after the signature", CAN11, "49 04", "Invalid number of data bytes: 2" },
        { "ISO 9141, 27 bytes", ISO9141, repeatHex(oneFrame, 3) + "49 04 04 00 00",
          "Invalid number of data bytes: 26" },
        { "ISO 9141, one frame", ISO9141, oneFrame, "Invalid number of data bytes: 7" },
        { "KWP, second frame with a wrong info type", KWP,
          oneFrame + "49 06 02 33 36 37 36 49 04 03 31 35 30 30 49 04 04 00 00 00 00",
          "Invalid data received" },
        { "KWP, message numbers 1 1 2 3", KWP,
          oneFrame + oneFrame + "49 04 02 31 35 30 30 49 04 03 00 00 00 00",
          "Invalid data received" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        CalibrationIds ids;
        EXPECT_FALSE(feed(ids, row.protocol, row.hex));
        EXPECT_TRUE(LogCapture::instance().contains(row.message, LOG_ERROR))
            << LogCapture::instance().dump();
        LogCapture::instance().clear();
        EXPECT_TRUE(ids.getCalibrationIds(ecu()).empty());
        EXPECT_TRUE(LogCapture::instance().contains("invalid ECU id 2024", LOG_WARN));
    }
}

// ---------------------------------------------------------------- verification numbers

TEST(CalibrationVerificationNumbers, DecodesBothLayouts)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        const char* hex;
        std::vector<unsigned int> numbers;
        std::vector<std::string> texts;
    };
    const Row rows[] = {
        { "CAN, one number", CAN11, "49 06 01 17 91 BC 82", { 0x1791BC82 }, { "1791BC82" } },
        { "CAN, two numbers", CAN11, "49 06 02 17 91 BC 82 16 E0 62 BE",
          { 0x1791BC82, 0x16E062BE }, { "1791BC82", "16E062BE" } },
        { "ISO 9141, one frame", ISO9141, "49 06 01 17 91 BC 82", { 0x1791BC82 }, { "1791BC82" } },
        { "J1850, two frames in reverse order", J1850,
          "49 06 02 16 E0 62 BE 49 06 01 17 91 BC 82", { 0x1791BC82, 0x16E062BE },
          { "1791BC82", "16E062BE" } },
        { "CAN, leading zeros kept in the text", CAN29, "49 06 01 00 00 0A 0B", { 0x00000A0B },
          { "00000A0B" } },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        CalibrationVerificationNumbers cvn;
        EXPECT_TRUE(feed(cvn, row.protocol, row.hex));
        EXPECT_EQ(row.numbers, cvn.getVerificationNumbers(ecu()));
        EXPECT_EQ(row.texts, cvn.getVerificationNumberTexts(ecu()));
    }
    CalibrationVerificationNumbers cvn;
    EXPECT_TRUE(feed(cvn, CAN11, "49 06 02 17 91 BC 82 16 E0 62 BE"));
    EXPECT_TRUE(LogCapture::instance().contains("Number of verification items: 2", LOG_DEBUG));
}

TEST(CalibrationVerificationNumbers, RefusesWrongLengthsAndBadFrames)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        const char* hex;
        const char* message;
    };
    const Row rows[] = {
        { "CAN, 6 bytes", CAN11, "49 06 01 17 91 BC", "Invalid number of data bytes: 6" },
        { "CAN, a number and a half", CAN11, "49 06 02 17 91 BC 82 16 E0",
          "Invalid number of data bytes: 9" },
        { "ISO 9141, 8 bytes", ISO9141, "49 06 01 17 91 BC 82 00",
          "Invalid number of data bytes: 8" },
        { "ISO 9141, signature only", ISO9141, "49 06", "Invalid number of data bytes: 2" },
        { "KWP, second frame of service 08", KWP, "49 06 01 17 91 BC 82 48 06 02 16 E0 62 BE",
          "Invalid data received" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        CalibrationVerificationNumbers cvn;
        EXPECT_FALSE(feed(cvn, row.protocol, row.hex));
        EXPECT_TRUE(LogCapture::instance().contains(row.message, LOG_ERROR))
            << LogCapture::instance().dump();
        EXPECT_TRUE(cvn.getVerificationNumberTexts(ecu()).empty());
    }
}

// ---------------------------------------------------------------- ECU name

TEST(EcuName, SplitsAbbreviationAndName)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        std::string hex;
        const char* abbreviation;
        const char* text;
        const char* fullName;
        const char* longName;
    };
    // "ECM\0-EngineControl\0\0": abbreviation padded to 4, '-' at byte 7.
    const std::string ecm = textHex("ECM", 4) + " 2D" + textHex("EngineControl", 15);
    const std::vector<unsigned char> ecmBytes = hexBytes(ecm);
    std::string framed;
    for (size_t f = 0; f < 5; ++f) {
        char head[16];
        std::snprintf(head, sizeof(head), " 49 0A %02X", static_cast<unsigned int>(f + 1));
        framed += head;
        for (size_t i = 0; i < 4; ++i) {
            char b[4];
            std::snprintf(b, sizeof(b), " %02X", ecmBytes[f * 4 + i]);
            framed += b;
        }
    }
    const Row rows[] = {
        { "CAN, ECM-EngineControl", CAN11, "49 0A 01" + ecm, "ECM", "EngineControl",
          "Engine Control Module", "Engine Control Module" },
        { "ISO 9141, ECM-EngineControl in five frames", ISO9141, framed, "ECM", "EngineControl",
          "Engine Control Module", "Engine Control Module" },
        { "CAN, four-character abbreviation 4WD with spaces", CAN29,
          "49 0A 01" + textHex("4WD ", 4) + " 2D" + textHex("  Clutch", 15), "4WD", "Clutch",
          "Four-Wheel Driver Clutch Control Module", "Four-Wheel Driver Clutch Control Module" },
        { "CAN, TCM with trailing bytes", CAN11,
          "49 0A 01" + textHex("TCM", 4) + " 2D" + textHex("TransmissionCtl", 15) + " 00 00",
          "TCM", "TransmissionCtl", "Transmission Control Module", "Transmission Control Module" },
        { "CAN, abbreviation not in the table", CAN11,
          "49 0A 01" + textHex("XYZ", 4) + " 2D" + textHex("Mystery", 15), "XYZ", "Mystery", "",
          "Mystery" },
        { "CAN, lower-case abbreviation is not looked up", CAN11,
          "49 0A 01" + textHex("ecm", 4) + " 2D" + textHex("Engine", 15), "ecm", "Engine", "",
          "Engine" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EcuName name;
        EXPECT_TRUE(feed(name, row.protocol, row.hex));
        EXPECT_FALSE(LogCapture::instance().contains("No delimeter found!"));
        EXPECT_TRUE(name.hasName(ecu()));
        EXPECT_EQ(row.abbreviation, name.getAbbreviation(ecu()));
        EXPECT_EQ(row.abbreviation, name.getShortName(ecu()));
        EXPECT_EQ(row.text, name.getText(ecu()));
        EXPECT_EQ(row.fullName, name.getFullName(ecu()));
        EXPECT_EQ(row.longName, name.getLongName(ecu()));
    }
}

TEST(EcuName, WithoutDelimiterTheWholeTextIsTheName)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        std::string hex;
        const char* text;
    };
    const Row rows[] = {
        { "CAN, space instead of '-'", CAN11,
          "49 0A 01" + textHex("ECM EngineControl", 20), "ECM EngineControl" },
        { "CAN, '-' one byte late", CAN11, "49 0A 01" + textHex("ECMXY-Engine", 20),
          "ECMXY-Engine" },
        { "CAN, all NUL", CAN11, "49 0A 01" + textHex("", 20), "" },
        { "KWP, five frames of 'BodyComputerUnit!!!'", KWP,
          "49 0A 01 42 6F 64 79 49 0A 02 43 6F 6D 70 49 0A 03 75 74 65 72"
          "49 0A 04 55 6E 69 74 49 0A 05 21 21 21 20",
          "BodyComputerUnit!!!" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EcuName name;
        EXPECT_TRUE(feed(name, row.protocol, row.hex));
        EXPECT_TRUE(LogCapture::instance().contains("No delimeter found!", LOG_DEBUG));
        EXPECT_EQ("", name.getAbbreviation(ecu()));
        EXPECT_EQ(row.text, name.getText(ecu()));
        EXPECT_EQ("", name.getFullName(ecu()));
        EXPECT_EQ(row.text, name.getLongName(ecu()));
    }
}

TEST(EcuName, RefusesWrongLengthsAndBadFrames)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        std::string hex;
        const char* message;
    };
    const std::string frame = "49 0A 01 45 43 4D 00";
    const Row rows[] = {
        { "CAN, 22 bytes", CAN11, "49 0A 01" + textHex("ECM", 4) + " 2D" + textHex("Engine", 14),
          "Invalid number of data bytes: 22" },
        { "ISO 9141, 28 bytes", ISO9141, "49 0A 01 45 43 4D 00 49 0A 02 2D 45 6E 67"
                                         "49 0A 03 69 6E 65 00 49 0A 04 00 00 00 00",
          "Invalid number of data bytes: 28" },
        { "ISO 9141, 36 bytes", ISO9141, repeatHex(frame, 5) + "00",
          "Invalid number of data bytes: 36" },
        { "KWP, fifth frame of info type 0B", KWP,
          "49 0A 01 45 43 4D 00 49 0A 02 2D 45 6E 67 49 0A 03 69 6E 65 00"
          "49 0A 04 00 00 00 00 49 0B 05 00 00 00 00",
          "Invalid data received" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EcuName name;
        EXPECT_FALSE(feed(name, row.protocol, row.hex));
        EXPECT_TRUE(LogCapture::instance().contains(row.message, LOG_ERROR))
            << LogCapture::instance().dump();
        EXPECT_FALSE(name.hasName(ecu()));
        LogCapture::instance().clear();
        EXPECT_EQ("", name.getLongName(ecu()));
        EXPECT_TRUE(LogCapture::instance().contains("invalid ECU id 2024", LOG_WARN));
    }
}

TEST(EcuName, AllTwentyNineModules)
{
    const std::map<std::string, std::string> modules = {
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
    EXPECT_EQ(29u, modules.size());
    for (const auto& module : modules) {
        SCOPED_TRACE(module.first);
        EXPECT_EQ(module.second, EcuName::fullNameOf(module.first));
    }
    EXPECT_EQ("", EcuName::fullNameOf(""));
    EXPECT_EQ("", EcuName::fullNameOf("ECU"));
}

// ---------------------------------------------------------------- performance tracking

namespace {

// Counter i holds 0x0100 * i + i + 1 so that both bytes matter.
std::string counterHex(unsigned int first, unsigned int count)
{
    std::string out;
    for (unsigned int i = first; i < first + count; ++i) {
        char text[32];
        const unsigned int value = 0x0100 * i + i + 1;
        std::snprintf(text, sizeof(text), " %02X %02X", value >> 8, value & 0xFF);
        out += text;
    }
    return out;
}

std::string counterFrames(unsigned char infoType, unsigned int frames)
{
    std::string out;
    for (unsigned int f = 0; f < frames; ++f) {
        char head[32];
        std::snprintf(head, sizeof(head), " 49 %02X %02X", infoType, f + 1);
        out += head + counterHex(2 * f, 2);
    }
    return out;
}

std::map<unsigned int, unsigned int> expectedCounters(unsigned int count)
{
    std::map<unsigned int, unsigned int> counters;
    for (unsigned int i = 0; i < count; ++i)
        counters[i] = 0x0100 * i + i + 1;
    return counters;
}

} // namespace

TEST(PerformanceTracking, SparkDecodesBothLayouts)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        std::string hex;
        unsigned int counters;
    };
    const Row rows[] = {
        { "CAN, 20 counters", CAN11, "49 08 14" + counterHex(0, 20), 20 },
        { "CAN, 16 counters (the minimum, 35 bytes)", CAN11, "49 08 10" + counterHex(0, 16), 16 },
        { "CAN, 16 counters and an odd trailing byte", CAN29,
          "49 08 10" + counterHex(0, 16) + " 7F", 16 },
        { "CAN, 21 counters: the extra one is dropped", CAN11, "49 08 15" + counterHex(0, 21), 20 },
        { "ISO 9141, ten frames", ISO9141, counterFrames(0x08, 10), 20 },
        { "KWP, one frame", KWP, counterFrames(0x08, 1), 2 },
        { "J1850, eleven frames: ids 20 and 21 dropped", J1850, counterFrames(0x08, 11), 20 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        PerformanceTrackingSpark spark;
        EXPECT_TRUE(feed(spark, row.protocol, row.hex));
        EXPECT_EQ(expectedCounters(row.counters), spark.getCounters(ecu()));
    }
}

TEST(PerformanceTracking, SparkRealCounts)
{
    // OBDCOND 0x0123, IGNCNTR 0x04D2, then catalyst bank 1 0x0010 / 0x0020.
    PerformanceTrackingSpark spark;
    ASSERT_TRUE(feed(spark, CAN11, "49 08 10 01 23 04 D2 00 10 00 20" + counterHex(4, 12)));
    EXPECT_EQ(0x0123u, spark.getCount(ecu(), PerformanceTrackingSpark::OBDCOND));
    EXPECT_EQ(1234u, spark.getCount(ecu(), PerformanceTrackingSpark::IGNCNTR));
    EXPECT_EQ(16u, spark.getCount(ecu(), PerformanceTrackingSpark::CATCOMP1));
    EXPECT_EQ(32u, spark.getCount(ecu(), PerformanceTrackingSpark::CATCOND1));
    EXPECT_EQ(0u, spark.getCount(ecu(), PerformanceTrackingSpark::SO2SCOND2));
}

TEST(PerformanceTracking, CompressionDecodesBothLayouts)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        std::string hex;
        unsigned int counters;
    };
    const Row rows[] = {
        { "CAN, 18 counters", CAN11, "49 0B 12" + counterHex(0, 18), 18 },
        { "CAN, 16 counters", CAN11, "49 0B 10" + counterHex(0, 16), 16 },
        { "CAN, 20 counters: two dropped", CAN11, "49 0B 14" + counterHex(0, 20), 18 },
        { "ISO 9141, nine frames", ISO9141, counterFrames(0x0B, 9), 18 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        PerformanceTrackingCompression compression;
        EXPECT_TRUE(feed(compression, row.protocol, row.hex));
        EXPECT_EQ(expectedCounters(row.counters), compression.getCounters(ecu()));
    }
}

TEST(PerformanceTracking, RefusesWrongLengthsAndBadFrames)
{
    struct Row
    {
        const char* name;
        std::shared_ptr<ObdParameter> parameter;
        unsigned int protocol;
        std::string hex;
        const char* message;
    };
    auto spark = [] { return std::make_shared<PerformanceTrackingSpark>(); };
    auto compression = [] { return std::make_shared<PerformanceTrackingCompression>(); };
    const Row rows[] = {
        { "spark, CAN, 34 bytes", spark(), CAN11, "49 08 10" + counterHex(0, 15) + " 00",
          "Invalid number of data bytes: 34" },
        { "spark, CAN, signature only", spark(), CAN11, "49 08",
          "Invalid number of data bytes: 2" },
        { "spark, ISO 9141, 8 bytes", spark(), ISO9141, counterFrames(0x08, 1) + " 00",
          "Invalid number of data bytes: 8" },
        { "spark, ISO 9141, second frame of 0B", spark(), ISO9141,
          counterFrames(0x08, 1) + " 49 0B 02 00 01 00 02", "Invalid data received" },
        { "compression, CAN, 20 bytes", compression(), CAN29, "49 0B 12" + counterHex(0, 8) + " 00",
          "Invalid number of data bytes: 20" },
        { "compression, KWP, message number 3 of 2", compression(), KWP,
          counterFrames(0x0B, 1) + " 49 0B 03 00 01 00 02", "Invalid data received" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_FALSE(feed(*row.parameter, row.protocol, row.hex));
        EXPECT_TRUE(LogCapture::instance().contains(row.message, LOG_ERROR))
            << LogCapture::instance().dump();
    }
}

TEST(PerformanceTracking, CounterNames)
{
    struct Row
    {
        unsigned int id;
        const char* spark;
        const char* compression;
    };
    const Row rows[] = {
        { 0, "OBD Monitoring Conditions Encountered Counts",
          "OBD Monitoring Conditions Encountered Counts" },
        { 1, "Ignition Cycle Counter", "Ignition Cycle Counter" },
        { 4, "Catalyst Monitor Completion Counts Bank 2",
          "NOx/SRC Catalyst Monitor Completion Condition Counts" },
        { 6, "O2 Sensor Monitor Completion Counts Bank 1",
          "NOx Adsorber Monitor Completion Conditions Counts" },
        { 12, "AIR Monitor Completion Condition Counts (Secondary Air)",
          "EGR and/or VVT Monitor Completion Condition Counts" },
        { 17, "Secondary O2 Sensor Monitor Conditions Encountered Counts Bank 1",
          "Fuel Monitor Conditions Encountered Counts" },
        { 19, "Secondary O2 Sensor Monitor Conditions Encountered Counts Bank 2", "NA" },
        { 20, "NA", "NA" },
        { 0xFFFFFFFFu, "NA", "NA" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.id);
        LogCapture::instance().clear();
        EXPECT_EQ(row.spark, PerformanceTrackingSpark::getCounterName(row.id));
        EXPECT_EQ(std::string(row.spark) == "NA",
                  LogCapture::instance().contains("Invalid counter: " + std::to_string(row.id)));
        LogCapture::instance().clear();
        EXPECT_EQ(row.compression, PerformanceTrackingCompression::getCounterName(row.id));
        EXPECT_EQ(std::string(row.compression) == "NA",
                  LogCapture::instance().contains("Invalid counter: " + std::to_string(row.id)));
    }
}

TEST(PerformanceTracking, UnknownEcuYieldsNothing)
{
    PerformanceTrackingSpark spark;
    LogCapture::instance().clear();
    EXPECT_TRUE(spark.getCounters(ecu(0x10)).empty());
    EXPECT_EQ(0u, spark.getCount(ecu(0x10), 0));
    EXPECT_EQ(2u, LogCapture::instance().count("invalid ECU id 16", LOG_WARN));
}

// ---------------------------------------------------------------- any bytes

TEST(VehicleInfoRobustness, AnyPayloadOfAnyLength)
{
    struct Row
    {
        const char* name;
        std::shared_ptr<ObdParameter> parameter;
        unsigned char infoType;
    };
    const Row rows[] = {
        { "VIN", std::make_shared<VehicleIdentificationNumber>(), 0x02 },
        { "calibration ids", std::make_shared<CalibrationIds>(), 0x04 },
        { "verification numbers", std::make_shared<CalibrationVerificationNumbers>(), 0x06 },
        { "spark counters", std::make_shared<PerformanceTrackingSpark>(), 0x08 },
        { "ECU name", std::make_shared<EcuName>(), 0x0A },
        { "compression counters", std::make_shared<PerformanceTrackingCompression>(), 0x0B },
    };
    std::mt19937 random(0x0909);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        for (unsigned int protocol = 0; protocol <= 5; ++protocol) {
            for (size_t length = 0; length <= 60; ++length) {
                for (int round = 0; round < 4; ++round) {
                    std::vector<unsigned char> data = InfoTest::randomBytes(random, length);
                    // Most rounds carry a valid signature so that the decoder runs.
                    if (round > 0 && length >= 2) {
                        data[0] = 0x49;
                        data[1] = row.infoType;
                    }
                    if (round == 3) {
                        for (size_t at = 0; at + 2 < length; at += 7) {
                            data[at] = 0x49;
                            data[at + 1] = row.infoType;
                            data[at + 2] = static_cast<unsigned char>(at / 7 + 1);
                        }
                    }
                    row.parameter->parse(protocol, 0x10, data);
                    row.parameter->parsePayload(0x10, data);
                }
            }
        }
    }
    // The decoders only have to survive; the reads afterwards must be sane.
    VehicleIdentificationNumber vin;
    EXPECT_FALSE(vin.parsePayload(1, {}));
    EXPECT_FALSE(EcuName().parsePayload(1, {}));
    EXPECT_FALSE(CalibrationIds().parsePayload(1, {}));
    EXPECT_FALSE(CalibrationVerificationNumbers().parsePayload(1, {}));
    EXPECT_FALSE(PerformanceTrackingSpark().parsePayload(1, {}));
    EXPECT_FALSE(PerformanceTrackingCompression().parsePayload(1, {}));
}
