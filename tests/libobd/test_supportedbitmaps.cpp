#include "ecu.h"
#include "supportedlists.h"
#include "fakeproxy.h"
#include "fakescantool.h"
#include "iscantool.h"
#include "logcapture.h"
#include "obdtransporter.h"
#include "parameters/supportedtids.h"
#include "parameters/supportedvehicleinfos.h"
#include "powertrain/supportedpids.h"
#include "sensorinfo.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;

Bytes fromHex(const std::string& text)
{
    Bytes out;
    std::istringstream in(text);
    std::string pair;
    while (in >> pair)
        out.push_back(static_cast<unsigned char>(std::stoul(pair, nullptr, 16)));
    return out;
}

const Bytes SPEC_OFFSETS = {1, 3, 4, 5, 6, 7, 12, 13, 14, 15, 16, 17, 19, 21, 28, 31, 32};
const Bytes VIN_INFO_OFFSETS = {2, 4, 6, 8, 10};

Bytes range(unsigned char first, unsigned char last)
{
    Bytes out;
    for (unsigned int n = first; n <= last; ++n)
        out.push_back(static_cast<unsigned char>(n));
    return out;
}

// The three bitmap parameters behind one reading interface.
struct Bitmap
{
    enum Kind { PIDS, TIDS, INFOS };
    Kind kind;
    unsigned char first;  // mode, tid or info type
    unsigned int second;  // pid or sensor

    std::unique_ptr<ObdParameter> make() const
    {
        switch (kind) {
        case PIDS:
            return std::unique_ptr<ObdParameter>(new SupportedPids(first, static_cast<unsigned char>(second)));
        case TIDS:
            return std::unique_ptr<ObdParameter>(new SupportedTids(first, second));
        default:
            return std::unique_ptr<ObdParameter>(new SupportedVehicleInfos(first));
        }
    }

    static bool read(const ObdParameter& parameter, const Ecu& ecu, Bytes& list)
    {
        if (auto p = dynamic_cast<const SupportedPids*>(&parameter))
            return p->getSupported(ecu, list);
        if (auto p = dynamic_cast<const SupportedTids*>(&parameter))
            return p->getSupported(ecu, list);
        if (auto p = dynamic_cast<const SupportedVehicleInfos*>(&parameter))
            return p->getSupported(ecu, list);
        return false;
    }

    static void ids(const ObdParameter& parameter, std::vector<unsigned int>& list)
    {
        if (auto p = dynamic_cast<const SupportedPids*>(&parameter))
            p->getEcuIds(list);
        if (auto p = dynamic_cast<const SupportedTids*>(&parameter))
            p->getEcuIds(list);
        if (auto p = dynamic_cast<const SupportedVehicleInfos*>(&parameter))
            p->getEcuIds(list);
    }
};

struct Decoded
{
    unsigned int ecuId;
    Bytes offsets;
};

struct SignatureRow
{
    const char* name;
    Bitmap bitmap;
    unsigned int protocol;
    bool headersOn;
    const char* reply;
    const char* command;
    unsigned int timeout;
    ExchangeResult result;
    std::vector<Decoded> decoded; // every ECU with an entry, ascending
    const char* note;             // a log text expected, or nullptr
    int noteLevel;
};

} // namespace

class SignaturesAndHeaders : public ::testing::Test
{
protected:
    void SetUp() override { LogCapture::instance().clear(); }
};

TEST_F(SignaturesAndHeaders, RequestsSignaturesAndHeaderLengthsByModeAndProtocol)
{
    const SignatureRow rows[] = {
        {"mode 01 range 00 on CAN 11-bit", {Bitmap::PIDS, 1, 0x00}, PROTOCOL_CAN_11BIT, true,
         "7E8 06 41 00 BE 1F A8 13 \r\r>", "0100", 10000, ER_OK, {{0x7E8, SPEC_OFFSETS}}, nullptr, 0},
        {"mode 02 range 00 carries the frame number", {Bitmap::PIDS, 2, 0x00}, PROTOCOL_CAN_11BIT,
         true, "7E8 07 42 00 00 BE 1F A8 13 \r\r>", "020000", 10000, ER_OK,
         {{0x7E8, SPEC_OFFSETS}}, nullptr, 0},
        {"mode 01 range 20 on KWP", {Bitmap::PIDS, 1, 0x20}, PROTOCOL_KWP2000, true,
         "86 F1 10 41 20 80 01 A0 01 C2 \r\r>", "0120", 10000, ER_OK,
         {{0x10, {1, 16, 17, 19, 32}}}, nullptr, 0},
        {"mode 01 range 40 on J1850, two ECUs", {Bitmap::PIDS, 1, 0x40}, PROTOCOL_J1850, true,
         "48 6B 10 41 40 FE D0 00 00 5C \r48 6B 18 41 40 40 00 00 00 1D \r\r>", "0140", 10000, ER_OK,
         {{0x10, {1, 2, 3, 4, 5, 6, 7, 9, 10, 12}}, {0x18, {2}}}, nullptr, 0},
        {"mode 06 on ISO 9141 with filler 00", {Bitmap::PIDS, 6, 0x00}, PROTOCOL_ISO9141, true,
         "48 6B 10 46 00 00 C0 00 00 01 6E \r\r>", "0600", 10000, ER_OK, {{0x10, {1, 2, 32}}},
         "Invalid filler byte: 0", LOG_DEBUG},
        {"mode 06 on ISO 9141 with filler FF", {Bitmap::PIDS, 6, 0x00}, PROTOCOL_ISO9141, true,
         "48 6B 10 46 00 FF C0 00 00 01 6E \r\r>", "0600", 10000, ER_OK, {{0x10, {1, 2, 32}}},
         nullptr, 0},
        {"mode 06 on CAN has no filler", {Bitmap::PIDS, 6, 0x00}, PROTOCOL_CAN_11BIT, true,
         "7E8 06 46 00 C0 00 00 01 \r\r>", "0600", 10000, ER_OK, {{0x7E8, {1, 2, 32}}}, nullptr, 0},
        {"answer for another PID is refused by the signature", {Bitmap::PIDS, 1, 0x00},
         PROTOCOL_CAN_11BIT, true, "7E8 06 41 20 80 01 A0 01 \r\r>", "0100", 10000, ER_OK, {},
         "Signature mismatch", LOG_ERROR},
        {"negative response is refused by the signature", {Bitmap::PIDS, 1, 0x00},
         PROTOCOL_CAN_11BIT, true, "7E8 03 7F 01 12 \r\r>", "0100", 10000, ER_OK, {},
         "Signature mismatch", LOG_ERROR},
        {"bitmap one byte short", {Bitmap::PIDS, 1, 0x00}, PROTOCOL_CAN_11BIT, true,
         "7E8 05 41 00 BE 1F A8 \r\r>", "0100", 10000, ER_OK, {}, "Invalid length", LOG_ERROR},
        {"service 05 on ISO 9141, sensor B1S2", {Bitmap::TIDS, 0x00, 1}, PROTOCOL_ISO9141, true,
         "48 6B 10 45 00 02 FF E0 00 00 2B \r\r>", "050002", 1200, ER_OK, {{0x10, range(1, 11)}},
         nullptr, 0},
        {"service 05, bank 3 sensor 1 reuses 0x10", {Bitmap::TIDS, 0x00, 8}, PROTOCOL_KWP2000, true,
         "87 F1 10 45 00 10 FF E0 00 01 2B \r\r>", "050010", 1200, ER_OK,
         {{0x10, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 32}}}, nullptr, 0},
        {"service 05 answer for another sensor", {Bitmap::TIDS, 0x00, 1}, PROTOCOL_ISO9141, true,
         "48 6B 10 45 00 01 FF E0 00 00 2B \r\r>", "050002", 1200, ER_OK, {},
         "Signature mismatch", LOG_ERROR},
        {"service 09 on CAN", {Bitmap::INFOS, 0x00, 0}, PROTOCOL_CAN_11BIT, true,
         "7E8 06 49 00 55 40 00 00 \r\r>", "0900", 3000, ER_OK, {{0x7E8, VIN_INFO_OFFSETS}},
         nullptr, 0},
        {"service 09 on CAN 29-bit, two ECUs", {Bitmap::INFOS, 0x00, 0}, PROTOCOL_CAN_29BIT, true,
         "18 DA F1 1A 06 49 00 14 40 00 00 \r18 DA F1 10 06 49 00 55 40 00 00 \r\r>", "0900", 3000,
         ER_OK, {{0x18DAF110, VIN_INFO_OFFSETS}, {0x18DAF11A, {4, 6, 10}}}, nullptr, 0},
        {"service 09 on KWP carries a message count", {Bitmap::INFOS, 0x00, 0}, PROTOCOL_KWP2000,
         true, "87 F1 10 49 00 01 55 40 00 00 2F \r\r>", "0900", 3000, ER_OK,
         {{0x10, VIN_INFO_OFFSETS}}, nullptr, 0},
        {"service 09 answer of 6 bytes on KWP", {Bitmap::INFOS, 0x00, 0}, PROTOCOL_KWP2000, true,
         "86 F1 10 49 00 55 40 00 00 2F \r\r>", "0900", 3000, ER_OK, {}, "Invalid length",
         LOG_ERROR},
        {"service 09 answer of 7 bytes on CAN", {Bitmap::INFOS, 0x00, 0}, PROTOCOL_CAN_11BIT, true,
         "7E8 07 49 00 01 55 40 00 00 \r\r>", "0900", 3000, ER_OK, {}, "Invalid length", LOG_ERROR},
        {"headers off: the answer belongs to ECU 0", {Bitmap::PIDS, 1, 0x00}, PROTOCOL_CAN_11BIT,
         false, "41 00 BE 1F A8 13 \r\r>", "0100", 10000, ER_OK, {{0, SPEC_OFFSETS}}, nullptr, 0},
        {"headers off, wrong length fails the exchange", {Bitmap::PIDS, 1, 0x00},
         PROTOCOL_CAN_11BIT, false, "41 00 BE 1F A8 13 \r41 00 98 18 80 11 \r\r>", "0100", 10000,
         ER_ERROR, {}, "Invalid length", LOG_ERROR},
    };
    for (const SignatureRow& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        FakeScantool tool(row.protocol, row.headersOn, true);
        tool.setReply(row.command, row.reply);
        FakeProxy proxy(&tool);
        std::unique_ptr<ObdParameter> parameter = row.bitmap.make();
        EXPECT_EQ(row.result, ObdTransporter().execute(&proxy, parameter.get()))
            << LogCapture::instance().dump();
        ASSERT_EQ(1u, tool.commands().size());
        EXPECT_EQ(row.command, tool.commands()[0]);
        EXPECT_EQ(row.timeout, tool.timeouts()[0]);
        EXPECT_EQ(row.protocol, parameter->getProtocol());

        std::vector<unsigned int> ids;
        Bitmap::ids(*parameter, ids);
        ASSERT_EQ(row.decoded.size(), ids.size());
        for (size_t i = 0; i < row.decoded.size(); ++i) {
            EXPECT_EQ(row.decoded[i].ecuId, ids[i]);
            Bytes list;
            EXPECT_TRUE(Bitmap::read(*parameter, Ecu(row.decoded[i].ecuId, row.protocol, ""), list));
            EXPECT_EQ(row.decoded[i].offsets, list) << "ECU " << row.decoded[i].ecuId;
        }
        if (row.note) {
            EXPECT_EQ(row.noteLevel, LogCapture::instance().find(row.note).level)
                << LogCapture::instance().dump();
        }
    }
}

class BitmapDecoding : public ::testing::Test
{
protected:
    void SetUp() override { LogCapture::instance().clear(); }
};

TEST_F(BitmapDecoding, OffsetsAreBitPositionsCountedFromTheTop)
{
    struct Row
    {
        const char* name;
        const char* bytes;
        Bytes offsets;
    } rows[] = {
        {"J1979 example BE 1F A8 13", "BE 1F A8 13", SPEC_OFFSETS},
        {"nothing supported", "00 00 00 00", {}},
        {"everything supported", "FF FF FF FF", range(1, 32)},
        {"first PID and the next range", "80 00 00 01", {1, 32}},
        {"only the next range", "00 00 00 01", {32}},
        {"one bit per byte", "01 02 04 08", {8, 15, 22, 29}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Bytes b = fromHex(row.bytes);
        Bytes list;
        SupportedLists::decodeBitmap(b[0], b[1], b[2], b[3], list);
        EXPECT_EQ(row.offsets, list);

        SupportedPids pids(1, 0x00);
        Bytes answer = fromHex(std::string("41 00 ") + row.bytes);
        EXPECT_TRUE(pids.parse(PROTOCOL_CAN_11BIT, 0x7E8, answer));
        list.clear();
        EXPECT_TRUE(pids.getSupported(Ecu(0x7E8, 3, ""), list));
        EXPECT_EQ(row.offsets, list);
    }
}

TEST_F(BitmapDecoding, WrongLengthsAreRefusedAndNothingIsStored)
{
    struct Row
    {
        const char* name;
        Bitmap bitmap;
        unsigned int protocol;
        const char* answer;
        bool logged; // "Invalid length" expected
    } rows[] = {
        {"PIDs: three data bytes", {Bitmap::PIDS, 1, 0}, 3, "41 00 BE 1F A8", true},
        {"PIDs: five data bytes", {Bitmap::PIDS, 1, 0}, 3, "41 00 BE 1F A8 13 00", true},
        {"PIDs: header only", {Bitmap::PIDS, 1, 0}, 3, "41 00", false},
        {"PIDs: empty", {Bitmap::PIDS, 1, 0}, 3, "", false},
        {"TIDs: six bytes", {Bitmap::TIDS, 0, 0}, 0, "45 00 01 FF E0 00", true},
        {"TIDs: eight bytes", {Bitmap::TIDS, 0, 0}, 0, "45 00 01 FF E0 00 00 00", true},
        {"infos: six bytes on KWP", {Bitmap::INFOS, 0, 0}, 1, "49 00 55 40 00 00", true},
        {"infos: six bytes on ISO 9141", {Bitmap::INFOS, 0, 0}, 0, "49 00 55 40 00 00", true},
        {"infos: seven bytes on CAN 29-bit", {Bitmap::INFOS, 0, 0}, 4, "49 00 01 55 40 00 00", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        std::unique_ptr<ObdParameter> parameter = row.bitmap.make();
        EXPECT_FALSE(parameter->parse(row.protocol, 0x10, fromHex(row.answer)));
        EXPECT_EQ(row.logged ? 1u : 0u, LogCapture::instance().count("Invalid length", LOG_ERROR));
        std::vector<unsigned int> ids;
        Bitmap::ids(*parameter, ids);
        EXPECT_TRUE(ids.empty());
    }
}

TEST_F(BitmapDecoding, NewAnswerReplacesOldAndUnknownEcuIsWarned)
{
    SupportedPids pids(1, 0x00);
    EXPECT_TRUE(pids.parse(3, 0x7E9, fromHex("41 00 FF FF FF FF")));
    EXPECT_TRUE(pids.parse(3, 0x7E8, fromHex("41 00 80 00 00 00")));
    EXPECT_TRUE(pids.parse(3, 0x7E9, fromHex("41 00 00 00 00 01")));
    std::vector<unsigned int> ids{0x1};
    pids.getEcuIds(ids);
    EXPECT_EQ((std::vector<unsigned int>{0x1, 0x7E8, 0x7E9}), ids); // appended, ascending
    Bytes list{99};
    EXPECT_TRUE(pids.getSupported(Ecu(0x7E9, 3, ""), list));
    EXPECT_EQ(Bytes{32}, list);

    LogCapture::instance().clear();
    EXPECT_FALSE(pids.getSupported(Ecu(0x7EA, 3, ""), list));
    LogCapture::Record record = LogCapture::instance().find("invalid ECU id 2026");
    EXPECT_EQ(LOG_WARN, record.level);
    EXPECT_EQ("libobd/supportedlists.cpp", record.file);

    SupportedVehicleInfos infos(0x00);
    EXPECT_FALSE(infos.getSupported(Ecu(0x10, 1, ""), list));
    EXPECT_TRUE(LogCapture::instance().contains("invalid ECU id 16", LOG_WARN));
}

TEST_F(BitmapDecoding, SupportedPidsDescriptor)
{
    SupportedPids pids(2, 0x40);
    EXPECT_EQ(0x40, pids.getPid());
    EXPECT_EQ(2, pids.getMode());
    EXPECT_EQ("", pids.getName());
    EXPECT_EQ(10000u, pids.getTimeout());
    std::vector<SensorInfo*> infos;
    pids.getSensorInfos(infos);
    ASSERT_EQ(1u, infos.size());
    EXPECT_EQ("", infos[0]->getName());
    EXPECT_EQ(0u, infos[0]->getKind());
    pids.parse(3, 0x7E8, fromHex("42 40 00 80 00 00 00"));
    std::vector<std::string> texts;
    pids.getFormattedValues(Ecu(0x7E8, 3, ""), US_METRIC, texts);
    EXPECT_TRUE(texts.empty());
    Bytes request;
    pids.getRequest(3, request);
    EXPECT_EQ(fromHex("02 40 00"), request);

    // Only the TID bitmap forgets on clear().
    LogCapture::instance().clear();
    pids.clear();
    EXPECT_TRUE(LogCapture::instance().contains("Clear not implemented", LOG_DEBUG));
    Bytes list;
    EXPECT_TRUE(pids.getSupported(Ecu(0x7E8, 3, ""), list));
    EXPECT_EQ(Bytes{1}, list);
}

TEST_F(BitmapDecoding, TidSensorByteTableAndClear)
{
    const struct
    {
        unsigned int sensor;
        unsigned char byte;
    } rows[] = {{0, 0x01}, {1, 0x02}, {2, 0x04}, {3, 0x08}, {4, 0x10},  {5, 0x20}, {6, 0x40},
                {7, 0x80}, {8, 0x10}, {9, 0x20}, {10, 0x40}, {11, 0x80}, {12, 0x00}, {255, 0x00}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.sensor);
        SupportedTids tids(0x20, row.sensor);
        EXPECT_EQ(row.byte, tids.getSensorByte());
        Bytes request, signature;
        tids.getRequest(0, request);
        tids.getSignature(signature);
        EXPECT_EQ((Bytes{0x05, 0x20, row.byte}), request);
        EXPECT_EQ((Bytes{0x45, 0x20, row.byte}), signature);
        EXPECT_EQ(1200u, tids.getTimeout());
    }
    SupportedTids tids(0x00, 0);
    EXPECT_TRUE(tids.parse(0, 0x10, fromHex("45 00 01 FF E0 00 00")));
    Bytes list;
    EXPECT_TRUE(tids.getSupported(Ecu(0x10, 0, ""), list));
    EXPECT_EQ(range(1, 11), list);
    tids.clear();
    EXPECT_FALSE(tids.getSupported(Ecu(0x10, 0, ""), list));
}
