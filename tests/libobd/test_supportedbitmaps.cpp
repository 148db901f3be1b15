// The "supported" bitmaps of services 01/02/06 (PIDs), 05 (TIDs) and 09
// (info types): request, signature and layout per service and protocol on
// recorded replies, and the bit-to-offset decoding.

#include "ecu.h"
#include "fakeproxy.h"
#include "fakescantool.h"
#include "iscantool.h"
#include "logcapture.h"
#include "obdtransporter.h"
#include "parameters/supportedtids.h"
#include "parameters/supportedvehicleinfos.h"
#include "powertrain/supportedpids.h"
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

Bytes range(unsigned int first, unsigned int last)
{
    Bytes out;
    for (unsigned int n = first; n <= last; ++n)
        out.push_back(static_cast<unsigned char>(n));
    return out;
}

// BE 1F A8 13 = 1011 1110 0001 1111 1010 1000 0001 0011: bit n from the top is offset n + 1.
const Bytes BE1FA813 = { 1, 3, 4, 5, 6, 7, 12, 13, 14, 15, 16, 17, 19, 21, 28, 31, 32 };
// 55 40 00 00 = 0101 0101 0100 0000 ...
const Bytes INFOS_5540 = { 2, 4, 6, 8, 10 };

// The three bitmap parameters behind one interface.
struct Bitmap
{
    enum Kind { PIDS, TIDS, INFOS } kind;
    unsigned char first;  // mode, TID or info type
    unsigned int second;  // PID or sensor

    std::unique_ptr<ObdParameter> make() const
    {
        if (kind == PIDS)
            return std::unique_ptr<ObdParameter>(new SupportedPids(first, static_cast<unsigned char>(second)));
        if (kind == TIDS)
            return std::unique_ptr<ObdParameter>(new SupportedTids(first, second));
        return std::unique_ptr<ObdParameter>(new SupportedVehicleInfos(first));
    }
};

// Every ECU with an entry and its offsets: "2024: 1 3 4; 2025: 2".
std::string decoded(const ObdParameter& parameter, unsigned int protocol)
{
    std::vector<unsigned int> ids;
    if (auto p = dynamic_cast<const SupportedPids*>(&parameter))
        p->getEcuIds(ids);
    if (auto p = dynamic_cast<const SupportedTids*>(&parameter))
        p->getEcuIds(ids);
    if (auto p = dynamic_cast<const SupportedVehicleInfos*>(&parameter))
        p->getEcuIds(ids);
    std::ostringstream out;
    for (unsigned int id : ids) {
        Bytes list;
        const Ecu ecu(id, protocol, "");
        bool found = false;
        if (auto p = dynamic_cast<const SupportedPids*>(&parameter))
            found = p->getSupported(ecu, list);
        if (auto p = dynamic_cast<const SupportedTids*>(&parameter))
            found = p->getSupported(ecu, list);
        if (auto p = dynamic_cast<const SupportedVehicleInfos*>(&parameter))
            found = p->getSupported(ecu, list);
        out << (out.tellp() > 0 ? "; " : "") << id << ":" << (found ? "" : " missing");
        for (unsigned char offset : list)
            out << ' ' << static_cast<unsigned int>(offset);
    }
    return out.str();
}

std::string offsets(unsigned int id, const Bytes& list)
{
    std::ostringstream out;
    out << id << ":";
    for (unsigned char offset : list)
        out << ' ' << static_cast<unsigned int>(offset);
    return out.str();
}

} // namespace

TEST(SupportedBitmaps, RecordedRepliesByServiceAndProtocol)
{
    struct Row
    {
        const char* name;
        Bitmap bitmap;
        unsigned int protocol;
        bool headers;
        const char* command;
        const char* reply;
        ExchangeResult result;
        std::string decoded;
        const char* note; // a log text expected, or nullptr
    };
    const Row rows[] = {
        { "01 00 on CAN 11-bit", { Bitmap::PIDS, 1, 0x00 }, PROTOCOL_CAN_11BIT, true, "0100",
          "7E8 06 41 00 BE 1F A8 13 \r\r>", ER_OK, offsets(0x7E8, BE1FA813), nullptr },
        { "02 00 carries the frame number", { Bitmap::PIDS, 2, 0x00 }, PROTOCOL_CAN_11BIT, true, "020000",
          "7E8 07 42 00 00 BE 1F A8 13 \r\r>", ER_OK, offsets(0x7E8, BE1FA813), nullptr },
        { "01 20 on KWP: 80 01 A0 01", { Bitmap::PIDS, 1, 0x20 }, PROTOCOL_KWP2000, true, "0120",
          "86 F1 10 41 20 80 01 A0 01 C2 \r\r>", ER_OK, "16: 1 16 17 19 32", nullptr },
        { "01 40 on J1850, two ECUs: FE D0 00 00 and 40 00 00 00", { Bitmap::PIDS, 1, 0x40 }, PROTOCOL_J1850, true,
          "0140", "48 6B 10 41 40 FE D0 00 00 5C \r48 6B 18 41 40 40 00 00 00 1D \r\r>", ER_OK,
          "16: 1 2 3 4 5 6 7 9 10 12; 24: 2", nullptr },
        { "06 00 on ISO 9141 skips the filler byte 00", { Bitmap::PIDS, 6, 0x00 }, PROTOCOL_ISO9141, true, "0600",
          "48 6B 10 46 00 00 C0 00 00 01 6E \r\r>", ER_OK, "16: 1 2 32", "Invalid filler byte: 0" },
        { "06 00 on ISO 9141 skips the filler byte FF", { Bitmap::PIDS, 6, 0x00 }, PROTOCOL_ISO9141, true, "0600",
          "48 6B 10 46 00 FF C0 00 00 01 6E \r\r>", ER_OK, "16: 1 2 32", nullptr },
        { "06 00 on CAN has no filler", { Bitmap::PIDS, 6, 0x00 }, PROTOCOL_CAN_11BIT, true, "0600",
          "7E8 06 46 00 C0 00 00 01 \r\r>", ER_OK, "2024: 1 2 32", nullptr },
        { "answer for another PID range is refused", { Bitmap::PIDS, 1, 0x00 }, PROTOCOL_CAN_11BIT, true, "0100",
          "7E8 06 41 20 80 01 A0 01 \r\r>", ER_OK, "", "Signature mismatch" },
        { "negative response is refused", { Bitmap::PIDS, 1, 0x00 }, PROTOCOL_CAN_11BIT, true, "0100",
          "7E8 03 7F 01 12 \r\r>", ER_OK, "", "Signature mismatch" },
        { "bitmap one byte short", { Bitmap::PIDS, 1, 0x00 }, PROTOCOL_CAN_11BIT, true, "0100",
          "7E8 05 41 00 BE 1F A8 \r\r>", ER_OK, "", "Invalid length" },
        { "05 00 for sensor B1S2 (byte 02) on ISO 9141: FF E0 00 00", { Bitmap::TIDS, 0x00, 1 }, PROTOCOL_ISO9141, true,
          "050002", "48 6B 10 45 00 02 FF E0 00 00 2B \r\r>", ER_OK, offsets(0x10, range(1, 11)), nullptr },
        { "05 00 for bank 3 sensor 1 reuses byte 10", { Bitmap::TIDS, 0x00, 8 }, PROTOCOL_KWP2000, true, "050010",
          "87 F1 10 45 00 10 FF E0 00 01 2B \r\r>", ER_OK, "16: 1 2 3 4 5 6 7 8 9 10 11 32", nullptr },
        { "05 00 answer for another sensor is refused", { Bitmap::TIDS, 0x00, 1 }, PROTOCOL_ISO9141, true, "050002",
          "48 6B 10 45 00 01 FF E0 00 00 2B \r\r>", ER_OK, "", "Signature mismatch" },
        { "09 00 on CAN: 55 40 00 00", { Bitmap::INFOS, 0x00, 0 }, PROTOCOL_CAN_11BIT, true, "0900",
          "7E8 06 49 00 55 40 00 00 \r\r>", ER_OK, offsets(0x7E8, INFOS_5540), nullptr },
        { "09 00 on CAN 29-bit, two ECUs", { Bitmap::INFOS, 0x00, 0 }, PROTOCOL_CAN_29BIT, true, "0900",
          "18 DA F1 1A 06 49 00 14 40 00 00 \r18 DA F1 10 06 49 00 55 40 00 00 \r\r>", ER_OK,
          offsets(0x18DAF110, INFOS_5540) + "; " + offsets(0x18DAF11A, { 4, 6, 10 }), nullptr },
        { "09 00 on KWP carries a message count", { Bitmap::INFOS, 0x00, 0 }, PROTOCOL_KWP2000, true, "0900",
          "87 F1 10 49 00 01 55 40 00 00 2F \r\r>", ER_OK, offsets(0x10, INFOS_5540), nullptr },
        { "09 00 without the count on KWP", { Bitmap::INFOS, 0x00, 0 }, PROTOCOL_KWP2000, true, "0900",
          "86 F1 10 49 00 55 40 00 00 2F \r\r>", ER_OK, "", "Invalid length" },
        { "09 00 with a count on CAN", { Bitmap::INFOS, 0x00, 0 }, PROTOCOL_CAN_11BIT, true, "0900",
          "7E8 07 49 00 01 55 40 00 00 \r\r>", ER_OK, "", "Invalid length" },
        { "headers off: the answer belongs to ECU 0", { Bitmap::PIDS, 1, 0x00 }, PROTOCOL_CAN_11BIT, false, "0100",
          "41 00 BE 1F A8 13 \r\r>", ER_OK, offsets(0, BE1FA813), nullptr },
        { "headers off, two answers run together fail the exchange", { Bitmap::PIDS, 1, 0x00 }, PROTOCOL_CAN_11BIT,
          false, "0100", "41 00 BE 1F A8 13 \r41 00 98 18 80 11 \r\r>", ER_ERROR, "", "Invalid length" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        FakeScantool tool(row.protocol, row.headers, true);
        tool.setReply(row.command, row.reply);
        FakeProxy proxy(&tool);
        std::unique_ptr<ObdParameter> parameter = row.bitmap.make();
        EXPECT_EQ(row.result, ObdTransporter().execute(&proxy, parameter.get())) << LogCapture::instance().dump();
        EXPECT_EQ(std::vector<std::string> { row.command }, tool.commands());
        EXPECT_EQ(row.decoded, decoded(*parameter, row.protocol));
        if (row.note) {
            EXPECT_TRUE(LogCapture::instance().contains(row.note)) << LogCapture::instance().dump();
        }
    }
}

TEST(SupportedBitmaps, BitsCountFromTheTopAndWrongLengthsStoreNothing)
{
    struct Row
    {
        const char* name;
        Bitmap bitmap;
        unsigned int protocol;
        const char* answer;
        bool accepted;
        Bytes offsets;
    };
    const Row rows[] = {
        { "nothing supported", { Bitmap::PIDS, 1, 0 }, PROTOCOL_CAN_11BIT, "41 00 00 00 00 00", true, {} },
        { "everything supported", { Bitmap::PIDS, 1, 0 }, PROTOCOL_CAN_11BIT, "41 00 FF FF FF FF", true, range(1, 32) },
        { "one bit per byte: 01 02 04 08 -> 8, 8+7, 16+6, 24+5", { Bitmap::PIDS, 1, 0 }, PROTOCOL_CAN_11BIT,
          "41 00 01 02 04 08", true, { 8, 15, 22, 29 } },
        { "PIDs: three data bytes", { Bitmap::PIDS, 1, 0 }, PROTOCOL_CAN_11BIT, "41 00 BE 1F A8", false, {} },
        { "PIDs: five data bytes", { Bitmap::PIDS, 1, 0 }, PROTOCOL_CAN_11BIT, "41 00 BE 1F A8 13 00", false, {} },
        { "PIDs: empty", { Bitmap::PIDS, 1, 0 }, PROTOCOL_CAN_11BIT, "", false, {} },
        { "TIDs: six bytes", { Bitmap::TIDS, 0, 0 }, PROTOCOL_ISO9141, "45 00 01 FF E0 00", false, {} },
        { "TIDs: eight bytes", { Bitmap::TIDS, 0, 0 }, PROTOCOL_ISO9141, "45 00 01 FF E0 00 00 00", false, {} },
        { "infos: seven bytes on CAN 29-bit", { Bitmap::INFOS, 0, 0 }, PROTOCOL_CAN_29BIT, "49 00 01 55 40 00 00", false, {} },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::unique_ptr<ObdParameter> parameter = row.bitmap.make();
        EXPECT_EQ(row.accepted, parameter->parse(row.protocol, 0x10, fromHex(row.answer)));
        EXPECT_EQ(row.accepted ? offsets(0x10, row.offsets) : "", decoded(*parameter, row.protocol));
    }
}

TEST(SupportedBitmaps, LaterAnswerReplacesAndUnknownEcuHasNoList)
{
    SupportedPids pids(1, 0x00);
    EXPECT_TRUE(pids.parse(PROTOCOL_CAN_11BIT, 0x7E9, fromHex("41 00 FF FF FF FF")));
    EXPECT_TRUE(pids.parse(PROTOCOL_CAN_11BIT, 0x7E8, fromHex("41 00 80 00 00 00")));
    EXPECT_TRUE(pids.parse(PROTOCOL_CAN_11BIT, 0x7E9, fromHex("41 00 00 00 00 01")));
    EXPECT_EQ("2024: 1; 2025: 32", decoded(pids, PROTOCOL_CAN_11BIT));
    Bytes list;
    LogCapture::instance().clear();
    EXPECT_FALSE(pids.getSupported(Ecu(0x7EA, PROTOCOL_CAN_11BIT, ""), list));
    EXPECT_TRUE(LogCapture::instance().contains("invalid ECU id 2026", LOG_WARN));

    SupportedTids tids(0x00, 0);
    EXPECT_TRUE(tids.parse(PROTOCOL_ISO9141, 0x10, fromHex("45 00 01 FF E0 00 00")));
    EXPECT_EQ(offsets(0x10, range(1, 11)), decoded(tids, PROTOCOL_ISO9141));
    tids.clear();
    EXPECT_FALSE(tids.getSupported(Ecu(0x10, PROTOCOL_ISO9141, ""), list));
}
