#include "csvreader.h"
#include "csvrecorder.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cstdlib>
#include <ctime>
#include <fstream>

using namespace Obd;

namespace {

std::string writeFile(const QTemporaryDir& dir, const std::string& content)
{
    const std::string path = dir.filePath("file.csv").toStdString();
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

} // namespace

// What the recorder writes comes back: titles taken apart, quoted text,
// gaps, and the instant of each line whatever the local time zone.
TEST(CsvReader, ReadsBackWhatTheRecorderWrote)
{
    QTemporaryDir dir;
    const char* oldZone = std::getenv("TZ");
    const std::string saved = oldZone ? oldZone : "";
    for (const char* zone : { "UTC", "Europe/Berlin", "America/St_Johns" }) {
        SCOPED_TRACE(zone);
        setenv("TZ", zone, 1);
        tzset();
        const std::string path = dir.filePath("rec.csv").toStdString();
        const CsvRecorder::Time first{ std::chrono::milliseconds(1795470459123LL) };
        {
            CsvRecorder recorder;
            ASSERT_TRUE(recorder.open(path, { CsvRecorder::columnTitle("Engine speed", "rpm", 0x7E8),
                                              CsvRecorder::columnTitle("Fuel system", "", 0x18DAF110) }));
            recorder.addRow({ "812.5", "Closed loop, \"O2\"" }, first);
            recorder.addRow({ "", "Open loop" }, first + std::chrono::milliseconds(1250));
        }
        CsvReader reader;
        ASSERT_TRUE(reader.read(path)) << reader.error();
        ASSERT_EQ(reader.columns().size(), 2u);
        EXPECT_EQ(reader.columns()[0].name, "Engine speed");
        EXPECT_EQ(reader.columns()[0].unit, "rpm");
        EXPECT_EQ(reader.columns()[0].ecu, "7E8");
        EXPECT_EQ(reader.columns()[1].name, "Fuel system");
        EXPECT_EQ(reader.columns()[1].unit, "");
        EXPECT_EQ(reader.columns()[1].ecu, "18DAF110");
        ASSERT_EQ(reader.rows().size(), 2u);
        EXPECT_EQ(reader.skipped(), 0u);
        EXPECT_EQ(reader.rows()[0].msec, 1795470459123LL);
        EXPECT_EQ(reader.rows()[1].msec, 1795470460373LL);
        double value = 0;
        EXPECT_TRUE(CsvReader::number(reader.rows()[0].cells[0], value));
        EXPECT_DOUBLE_EQ(value, 812.5);
        EXPECT_EQ(reader.rows()[0].cells[1], "Closed loop, \"O2\"");
        EXPECT_FALSE(CsvReader::number(reader.rows()[1].cells[0], value)) << "a gap";
        EXPECT_FALSE(CsvReader::number(reader.rows()[1].cells[1], value)) << "a text";
    }
    if (oldZone)
        setenv("TZ", saved.c_str(), 1);
    else
        unsetenv("TZ");
    tzset();
}

// A hand-edited or damaged file: what fits is read, what does not is skipped
// and counted; a file that is no recording is refused.
TEST(CsvReader, SkipsAndCountsLinesThatDoNotFit)
{
    const std::string header = "time,Speed [km/h] (ECU 7E8),Load [%] (ECU 7E8)\n";
    const std::string good = "2026-11-23T20:00:00.000+01:00,50,20\n";
    struct Row
    {
        const char* name;
        std::string content;
        bool readable;
        size_t rows;
        unsigned long skipped;
    } rows[] = {
        { "clean", header + good + good, true, 2, 0 },
        { "windows line ends and blank lines", "time,A (ECU 7E8)\r\n\r\n2026-11-23T20:00:00Z,1\r\n\n", true, 1, 0 },
        { "time that is no time", header + "yesterday,50,20\n" + good, true, 1, 1 },
        { "month 13", header + "2026-13-23T20:00:00.000+01:00,50,20\n" + good, true, 1, 1 },
        { "a cell too many", header + good + "2026-11-23T20:00:01.000+01:00,50,20,7\n", true, 1, 1 },
        { "a cell missing", header + "2026-11-23T20:00:01.000+01:00,50\n" + good, true, 1, 1 },
        { "quote left open at the end", header + good + "2026-11-23T20:00:01.000+01:00,\"50,20\n", true, 1, 1 },
        { "last line cut without a line end", header + good + "2026-11-23T20:00:01.000+01:00,5", true, 1, 1 },
        { "no time column", "Speed,Load\n50,20\n", false, 0, 0 },
        { "empty file", "", false, 0, 0 },
        { "binary noise", std::string("\0\xff\"\n,,\x01", 8), false, 0, 0 },
    };
    QTemporaryDir dir;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        CsvReader reader;
        EXPECT_EQ(reader.read(writeFile(dir, row.content)), row.readable) << reader.error();
        EXPECT_EQ(reader.rows().size(), row.rows);
        EXPECT_EQ(reader.skipped(), row.skipped);
    }
    CsvReader missing;
    EXPECT_FALSE(missing.read(dir.filePath("none.csv").toStdString()));
    EXPECT_NE(missing.error().find("none.csv"), std::string::npos);
}

TEST(CsvReader, TimeOffsetsNameTheSameInstant)
{
    std::tm utc{};
    utc.tm_year = 2026 - 1900;
    utc.tm_mon = 10;
    utc.tm_mday = 23;
    utc.tm_hour = 19;
    utc.tm_min = 47;
    utc.tm_sec = 39;
    const long long expected = timegm(&utc) * 1000LL + 123;
    for (const char* text : { "2026-11-23T19:47:39.123Z", "2026-11-23T20:47:39.123+01:00",
                              "2026-11-23T16:17:39.123-03:30", "2026-11-24T01:17:39.123+0530" }) {
        SCOPED_TRACE(text);
        long long msec = 0;
        ASSERT_TRUE(CsvReader::parseTime(text, msec));
        EXPECT_EQ(msec, expected);
    }
}
