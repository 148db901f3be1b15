// Exact reply bytes for every protocol family, as an ELM327 prints them.
// The car is frozen at t = 0: idle, standing, coolant at ambient.

#include "simclient.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct FramingRow {
    const char* name;
    const char* profile;
    std::vector<std::string> setup;      // AT commands after ATE0 (each must answer OK)
    const char* request;
    const char* expected;                // reply up to and including '>'
};

const std::vector<FramingRow> ROWS = {
    // ---- CAN 11-bit ---------------------------------------------------
    { "CAN 11 headers on, single frame with filler AA shown", "can11", { "ATSP6", "ATH1" }, "010C",
      "7E8 04 41 0C 0C 30 AA AA AA \r\r>" },
    { "CAN 11 headers off, single frame is data only", "can11", { "ATSP6" }, "010C", "41 0C 0C 30 \r\r>" },
    { "CAN 11 headers on, spaces off", "can11", { "ATSP6", "ATH1", "ATS0" }, "010C", "7E804410C0C30AAAAAA\r\r>" },
    { "CAN 11 two ECUs, ascending on an even request", "can11", { "ATSP6", "ATH1" }, "0100",
      "7E8 06 41 00 BE 3F B8 13 AA \r7E9 06 41 00 80 08 00 10 00 \r\r>" },
    { "CAN 11 two ECUs, 7E9 first on an odd request, filler 00 shown", "can11", { "ATSP6", "ATH1" }, "0101",
      "7E9 06 41 01 00 04 00 00 00 \r7E8 06 41 01 82 07 E5 04 AA \r\r>" },
    { "CAN 11 DLC display", "can11", { "ATSP6", "ATH1", "ATD1" }, "010D",
      "7E9 8 03 41 0D 00 00 00 00 00 \r7E8 8 03 41 0D 00 AA AA AA AA \r\r>" },
    { "CAN 11 response count 1 keeps the first answer only", "can11", { "ATSP6", "ATH1" }, "01001",
      "7E8 06 41 00 BE 3F B8 13 AA \r\r>" },
    { "CAN 11 several PIDs in one request", "can11", { "ATSP6" }, "010C0D", "41 0D 00 \r41 0C 0C 30 0D 00 \r\r>" },
    { "CAN 11 multi-frame VIN, headers on", "can11", { "ATSP6", "ATH1" }, "0902",
      "7E8 10 14 49 02 01 57 45 4C \r7E8 21 35 4D 33 32 37 43 31 \r7E8 22 31 41 30 30 30 30 31 \r\r>" },
    { "CAN 11 multi-frame VIN, headers off: count and numbered lines", "can11", { "ATSP6" }, "0902",
      "014\r0: 49 02 01 57 45 4C \r1: 35 4D 33 32 37 43 31 \r2: 31 41 30 30 30 30 31 \r\r>" },
    { "CAN 11 multi-frame, headers off, spaces off", "can11", { "ATSP6", "ATS0" }, "0902",
      "014\r0:49020157454C\r1:354D3332374331\r2:31413030303031\r\r>" },
    { "CAN 11 two ECUs multi-frame, last frames filled with their own filler", "can11", { "ATSP6", "ATH1" }, "090A",
      "7E8 10 17 49 0A 01 45 43 4D \r7E8 21 00 2D 45 6E 67 69 6E \r7E8 22 65 43 6F 6E 74 72 6F \r"
      "7E8 23 6C 00 00 AA AA AA AA \r"
      "7E9 10 17 49 0A 01 54 43 4D \r7E9 21 00 2D 54 72 61 6E 73 \r7E9 22 6D 69 73 73 69 6F 6E \r"
      "7E9 23 43 74 6C 00 00 00 00 \r\r>" },
    { "CAN 11 stored codes, count first", "can11", { "ATSP6" }, "03", "43 00 \r43 02 01 33 04 20 \r\r>" },
    { "CAN 11 monitor records, multi-frame with one filler byte", "can11", { "ATSP6", "ATH1" }, "0601",
      "7E8 10 13 46 01 80 0B 02 EE \r7E8 21 01 F4 03 E8 01 81 10 \r7E8 22 00 96 00 00 01 2C AA \r\r>" },
    { "CAN 11 service 05 refused by every ECU", "can11", { "ATSP6" }, "050001", "7F 05 11 \r7F 05 11 \r\r>" },
    { "CAN 11 freeze-frame code", "can11", { "ATSP6" }, "020200", "42 02 00 01 33 \r\r>" },
    { "CAN 11 range beyond the last is NO DATA", "can11", { "ATSP6" }, "0160", "NO DATA\r\r>" },

    // ---- CAN 29-bit ---------------------------------------------------
    { "CAN 29 headers on, filler not shown", "can29", { "ATSP7", "ATH1" }, "010C",
      "18 DA F1 10 04 41 0C 0B 40 \r\r>" },
    { "CAN 29 two ECUs, highest id first", "can29", { "ATSP7", "ATH1" }, "010D",
      "18 DA F1 18 03 41 0D 00 \r18 DA F1 10 03 41 0D 00 \r\r>" },
    { "CAN 29 spaces off", "can29", { "ATSP7", "ATH1", "ATS0" }, "010C", "18DAF11004410C0B40\r\r>" },

    // ---- ISO 14230-4 KWP ---------------------------------------------
    { "KWP format byte, engine at 0x11, checksum", "kwp", { "ATSP5", "ATH1" }, "010C",
      "84 F1 11 41 0C 0C D0 AF \r\r>" },
    { "KWP two ECUs", "kwp", { "ATSP5", "ATH1" }, "010D", "83 F1 11 41 0D 00 D3 \r83 F1 18 41 0D 00 DA \r\r>" },
    { "KWP headers off", "kwp", { "ATSP5" }, "010C", "41 0C 0C D0 \r\r>" },
    { "KWP legacy monitor test, one line per component", "kwp", { "ATSP5", "ATH1" }, "0601",
      "87 F1 11 46 01 01 01 90 03 00 65 \r87 F1 11 46 01 82 02 10 01 00 65 \r\r>" },
    { "KWP legacy supported TIDs with filler FF", "kwp", { "ATSP5" }, "0600", "46 00 FF 88 00 00 00 \r\r>" },
    { "KWP legacy VIN in five numbered lines", "kwp", { "ATSP5" }, "0902",
      "49 02 01 00 00 00 57 \r49 02 02 45 4C 31 34 \r49 02 03 32 33 30 4B \r49 02 04 57 50 30 30 \r"
      "49 02 05 30 30 30 33 \r\r>" },
    { "KWP legacy info types with message count", "kwp", { "ATSP5" }, "0900",
      "49 00 01 FF 40 00 00 \r49 00 01 30 00 00 00 \r\r>" },
    { "KWP legacy ECU name in five lines", "kwp", { "ATSP5" }, "090A",
      "49 0A 01 45 43 4D 00 \r49 0A 02 2D 45 6E 67 \r49 0A 03 69 6E 65 43 \r49 0A 04 6F 6E 74 72 \r"
      "49 0A 05 6F 6C 00 00 \r\r>" },
    { "KWP oxygen sensor TIDs for the sensors of the PID 1D layout", "kwp", { "ATSP5" }, "0500",
      "45 00 01 FF C0 00 00 \r45 00 02 03 00 00 00 \r\r>" },

    // ---- diesel ---------------------------------------------------------
    { "diesel compression-ignition counters, headers off, 39 bytes", "diesel", { "ATSP6" }, "090B",
      "027\r0: 49 0B 12 00 E9 02 \r1: BC 00 DC 00 E9 00 00 \r2: 00 00 00 00 00 00 00 \r"
      "3: C9 00 E9 00 E1 00 E9 \r4: 00 E6 00 E9 00 E4 00 \r5: E9 00 E7 00 E9 \r\r>" },
    { "diesel filler 55 not shown on single frames", "diesel", { "ATSP6", "ATH1" }, "0101",
      "7E8 06 41 01 81 0F EB 40 \r\r>" },

    // ---- ISO 9141-2 ---------------------------------------------------
    { "ISO 9141 slow init shown once, header 48 6B, sum checksum", "iso9141", { "ATSP3", "ATH1" }, "010C",
      "BUS INIT: ...OK\r48 6B 10 41 0C 0A 28 42 \r\r>" },
    { "ISO 9141 stored codes, three per line, 00 filled", "iso9141", { "ATSP3", "ATH1" }, "03",
      "BUS INIT: ...OK\r48 6B 10 43 03 00 03 01 03 02 12 \r48 6B 10 43 03 03 00 00 00 00 0C \r\r>" },
    { "ISO 9141 oxygen sensor test", "iso9141", { "ATSP3" }, "050101", "BUS INIT: ...OK\r45 01 01 5A 00 00 \r\r>" },
    { "ISO 9141 one test for every sensor", "iso9141", { "ATSP3" }, "0507",
      "BUS INIT: ...OK\r45 07 01 0A 00 50 \r45 07 02 14 00 50 \r45 07 10 0C 00 50 \r45 07 20 16 00 50 \r\r>" },

    // ---- SAE J1850 ----------------------------------------------------
    { "J1850 VPW header 48 6B, CRC-8", "j1850vpw", { "ATSP2", "ATH1" }, "010C", "48 6B 10 41 0C 09 60 D1 \r\r>" },
    { "J1850 PWM header 41 6B, CRC-8", "j1850pwm", { "ATSP1", "ATH1" }, "010D", "41 6B 10 41 0D 00 86 \r\r>" },
};

class FramingTest : public ::testing::TestWithParam<FramingRow>
{
};

TEST_P(FramingTest, PrintsTheExactReply)
{
    const FramingRow& row = GetParam();
    SimRig rig(row.profile);
    ASSERT_TRUE(rig.open(row.setup));
    EXPECT_EQ(rig.client.exchange(row.request), row.expected);
}

INSTANTIATE_TEST_SUITE_P(Replies, FramingTest, ::testing::ValuesIn(ROWS),
                         [](const ::testing::TestParamInfo<FramingRow>& info) { return testName(info.param.name); });

} // namespace
