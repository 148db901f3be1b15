#include "vinfields.h"

#include <gtest/gtest.h>

using namespace Obd;

namespace {

struct VinRow { const char* name; const char* vin; int latest; int year; const char* region; };

// Years worked out from the 30-year letter-and-digit cycle starting at A = 1980.
const VinRow ROWS[] = {
    { "LetterOfTheFirstCycleStaysWhenTheSecondIsAhead", "WVWZZZ1JZWW000001", 2027, 1998, "Europe" },
    { "LetterOfTheSecondCycleOnceItIsReached", "WVWZZZ1JZWW000001", 2028, 2028, "Europe" },
    { "FirstCodeOfTheSecondCycle", "1G1JC5SH0A4000001", 2027, 2010, "North America" },
    { "LastLetterBeforeTheDigits", "JHMCM5633YC000001", 2027, 2000, "Asia" },
    { "DigitAfterTheLetters", "SAJAA01T81A000001", 2027, 2001, "Europe" },
    { "LastDigitOfTheCycle", "9BWZZZ3779T000001", 2027, 2009, "South America" },
    { "LetterOfTheCurrentYear", "6FPAAAJGSTT000001", 2027, 2026, "Oceania" },
    { "LetterNeverUsedForAYear", "AHTFR22G8U6000001", 2027, 0, "Africa" },
    { "ZeroNeverUsedForAYear", "KMHCG45CX0Y000001", 2027, 0, "Asia" },
    { "TooShortForAYearAndNoRegion", "0ABC", 2027, 0, "" },
    { "EmptyText", "", 2027, 0, "" },
};

} // namespace

TEST(VinFields, ModelYearAndRegionFromTheirPositions)
{
    for (const VinRow& row : ROWS) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(VinFields::modelYear(row.vin, row.latest), row.year);
        EXPECT_EQ(VinFields::region(row.vin), row.region);
    }
}
