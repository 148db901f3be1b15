#include "dtcreader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Obd;

namespace {

// The code set as runs of consecutive codes, counting in hexadecimal.
const char* const CODE_RUNS[] = {
    "B0001-B0005", "B0010-B0013", "B0020-B0022", "B0028-B002A", "B0030-B0033", "B0038-B003B",
    "B0040-B0043", "B0048-B004B", "B0050-B0058", "B0060-B0061", "B0070-B0088", "B0090-B00A1",
    "B00B0-B00BB", "B00C0-B00CB", "B00D0-B00D5", "B00DF-B00E8", "C0001-C0004", "C0010-C0012",
    "C0014-C0016", "C0018-C001A", "C001C-C001E", "C0020-C0023", "C0030-C003E", "C0040-C004A",
    "C0051-C0055", "C0061-C0064", "C0069-C006C", "C0071-C0079", "C0081-C0086", "C0089-C008A",
    "P0001-P00BF", "P0100-P011D", "P0120-P012E", "P0130-P015D", "P0160-P0169", "P0170-P0179",
    "P0180-P0199", "P0200-P025D", "P0260-P0269", "P0270-P0279", "P0280-P0289", "P0290-P02FA",
    "P0300-P0309", "P0310-P0319", "P0320-P032E", "P0330-P033E", "P0340-P0349", "P0350-P0359",
    "P0360-P0363", "P0365-P0369", "P0370-P0379", "P037D-P0389", "P0390-P0394", "P0400-P04AA",
    "P0500-P052E", "P0530-P053C", "P0540-P054D", "P0550-P0559", "P0560-P056B", "P0570-P0579",
    "P0580-P0589", "P0590-P0599", "P0600-P06D1", "P0700-P077B", "P0780-P078E", "P0790-P07BE",
    "P0800-P080D", "P0810-P081E", "P0820-P085E", "P0860-P0869", "P0870-P0879", "P0880-P088B",
    "P0890-P0899", "P0900-P0909", "P0910-P0919", "P0920-P092D", "P0930-P0939", "P0940-P0949",
    "P0950-P0959", "P0960-P0969", "P0970-P0979", "P0980-P0989", "P0990-P099F", "P0A00-P0C87",
    "P2000-P201A", "P2020-P20F7", "P2100-P210E", "P2110-P2119", "P2120-P212E", "P2130-P2149",
    "P2150-P215C", "P2160-P2189", "P2190-P2199", "P2200-P2209", "P2210-P2219", "P2220-P2239",
    "P2240-P2249", "P2250-P2259", "P2260-P226B", "P2270-P2279", "P2280-P229D", "P2300-P2309",
    "P2310-P2319", "P2320-P2329", "P2330-P2339", "P2340-P2347", "P2400-P240C", "P2410-P2419",
    "P2420-P2439", "P2440-P2489", "P2500-P2592", "P2600-P261D", "P2620-P2629", "P2630-P2639",
    "P2640-P264E", "P2650-P265E", "P2660-P266E", "P2670-P267E", "P2680-P26A2", "P2700-P2709",
    "P2710-P2719", "P2720-P2729", "P2730-P273B", "P2740-P2749", "P2750-P2759", "P2760-P2769",
    "P2770-P2779", "P2780-P27A0", "P2800-P280B", "P2810-P285A", "P2A00-P2A09", "P2A10-P2A11",
    "P2BA7-P2BAE", "P3400-P3409", "P3410-P3419", "P3420-P3429", "P3430-P3439", "P3440-P3449",
    "P3450-P3459", "P3460-P3469", "P3470-P3479", "P3480-P3489", "P3490-P3497", "U0001-U0009",
    "U0010-U0019", "U0020-U0029", "U0030-U0039", "U0040-U0049", "U0050-U0059", "U0060-U0069",
    "U0070-U0074", "U0100-U011D", "U0120-U0129", "U0130-U0139", "U0140-U0149", "U0150-U0159",
    "U0160-U016A", "U0170-U0189", "U0190-U0199", "U0200-U0209", "U0210-U0219", "U0220-U0229",
    "U0230-U023E", "U0240-U024A", "U0250-U025D", "U0260-U0264", "U0286-U0289", "U0291-U029E",
    "U0300-U0309", "U0310-U0319", "U0320-U0329", "U0330-U0336", "U0400-U0419", "U041B-U041E",
    "U0420-U0429", "U0430-U043C", "U0441-U044A", "U0451-U045A", "U0461-U046B", "U0471-U048A",
    "U0491-U049A", "U0501-U050A", "U0511-U051A", "U0521-U052A", "U0531-U053D", "U0541-U054B",
    "U0551-U055E", "U0561-U0565", "U0587-U058A", "U0592-U059F", "U3000-U3011",
};

std::set<std::string> expectedCodes()
{
    std::set<std::string> codes;
    for (const char* run : CODE_RUNS) {
        const std::string text(run);
        const char letter = text[0];
        const unsigned long first = std::stoul(text.substr(1, 4), nullptr, 16);
        const unsigned long last = std::stoul(text.substr(7, 4), nullptr, 16);
        EXPECT_EQ(letter, text[6]) << run;
        EXPECT_LE(first, last) << run;
        for (unsigned long n = first; n <= last; ++n) {
            char code[8];
            std::snprintf(code, sizeof(code), "%c%04lX", letter, n);
            codes.insert(code);
        }
    }
    return codes;
}

} // namespace

TEST(DtcTable, HoldsExactlyTheCodesOfTheRuns)
{
    EXPECT_EQ(191u, sizeof(CODE_RUNS) / sizeof(CODE_RUNS[0]));
    const std::set<std::string> expected = expectedCodes();
    EXPECT_EQ(4277u, expected.size());

    unsigned int count = 0;
    const DtcRow* rows = dtcTable(count);
    ASSERT_NE(nullptr, rows);
    ASSERT_EQ(4277u, count);
    std::set<std::string> actual;
    for (unsigned int i = 0; i < count; ++i)
        actual.insert(rows[i].code);
    EXPECT_EQ(count, actual.size()) << "duplicate codes";

    for (const std::string& code : expected)
        EXPECT_TRUE(actual.count(code)) << "missing " << code;
    for (const std::string& code : actual)
        EXPECT_TRUE(expected.count(code)) << "unexpected " << code;
}

TEST(DtcTable, RowsAscendUniqueWithTextsOfNineTo107Characters)
{
    unsigned int count = 0;
    const DtcRow* rows = dtcTable(count);
    for (unsigned int i = 0; i < count; ++i) {
        SCOPED_TRACE(rows[i].code);
        if (i > 0) {
            EXPECT_LT(std::strcmp(rows[i - 1].code, rows[i].code), 0);
        }
        const size_t length = std::strlen(rows[i].description);
        EXPECT_GE(length, 9u);
        EXPECT_LE(length, 107u);
        EXPECT_EQ(nullptr, std::strchr(rows[i].description, '\t'));
    }
}

TEST(DtcTable, CountsPerPrefix)
{
    const std::map<std::string, size_t> expected = {
        { "B0", 125 }, { "C0", 76 }, { "P0", 2251 }, { "P2", 1177 },
        { "P3", 98 },  { "U0", 532 }, { "U3", 18 },
    };
    std::map<std::string, size_t> actual;
    for (const std::string& code : DtcReader::instance().getAllCodes())
        ++actual[code.substr(0, 2)];
    EXPECT_EQ(expected, actual);
}

TEST(DtcReader, SampleRowsExactlyAsStored)
{
    struct Row
    {
        const char* code;
        const char* description;
    };
    const Row rows[] = {
        { "B0001", "Driver Frontal Stage 1 Deployment Control" },
        { "C0035", "Right Front Wheel Speed Sensor Supply" },
        { "P0171", "System Too Lean (Bank 1)" },
        { "P0300", "Random/Multiple Cylinder Misfire Detected" },
        { "P0420", "Catalyst System Efficiency Below Threshold (Bank 1)" },
        { "P0782", "2-3 Shift" },
        { "P0AC4", "Hybrid Powertrain Control Module Requested MIL Illumination" },
        { "P2035", "Exhaust Gas Temperature Sensor Circuit Low (Bank 2 Sensor 2)" },
        { "U0100", "Lost Communication With ECM/PCM \"A\"" },
        { "U3011", "Ignition Input Off" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.code);
        EXPECT_EQ(row.description, DtcReader::instance().getDescription(row.code));
    }
}

TEST(DtcReader, UnknownCodesAreReserved)
{
    struct Row
    {
        const char* name;
        const char* code;
    };
    const Row rows[] = {
        { "P1 manufacturer code", "P1000" },
        { "lower case of a known code", "p0300" },
        { "gap between runs", "P0364" },
        { "one past the last code", "U3012" },
        { "empty", "" },
        { "code with trailing space", "P0300 " },
        { "prefix of a code", "P030" },
        { "unknown letter", "X0001" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ("ISO/SAE Reserved", DtcReader::instance().getDescription(row.code));
    }
}

TEST(DtcReader, CategoryByFirstCharacter)
{
    struct Row
    {
        const char* code;
        const char* category;
    };
    const Row rows[] = {
        { "P0300", "Powertrain" }, { "B0001", "Body" },      { "C0035", "Chassis" },
        { "U3011", "Network" },    { "X1234", "Undefined" }, { "p0300", "Undefined" },
        { "P", "Powertrain" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.code);
        EXPECT_EQ(row.category, DtcReader::instance().getCategory(row.code));
    }
    EXPECT_THROW(DtcReader::instance().getCategory(""), std::out_of_range);
}

TEST(DtcReader, AllCodesFirstAndLast)
{
    const std::vector<std::string> codes = DtcReader::instance().getAllCodes();
    ASSERT_EQ(4277u, codes.size());
    EXPECT_EQ(4277u, DtcReader::instance().size());
    EXPECT_EQ("B0001", codes.front());
    EXPECT_EQ("U3011", codes.back());
    for (size_t i = 1; i < codes.size(); ++i)
        ASSERT_LT(codes[i - 1], codes[i]);
}

TEST(DtcReader, InstanceIsShared)
{
    EXPECT_EQ(&DtcReader::instance(), &DtcReader::instance());
    DtcReader own;
    EXPECT_EQ(DtcReader::instance().size(), own.size());
    EXPECT_EQ(DtcReader::instance().getDescription("P0420"), own.getDescription("P0420"));
}
