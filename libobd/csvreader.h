#ifndef OBD_CSVREADER_H
#define OBD_CSVREADER_H

#include <string>
#include <vector>

namespace Obd {

// Reads back a file written by CsvRecorder: the columns of the header (name,
// unit and ECU taken apart again), then each line's time and cells. A file
// cut short or edited by hand still reads: an empty cell is a gap, and a
// line that does not fit (bad time, wrong number of cells, an open quote) is
// skipped and counted.
class CsvReader
{
public:
    struct Column
    {
        std::string title;
        std::string name;
        std::string unit;
        std::string ecu;
    };
    struct Row
    {
        long long msec; // since the epoch
        std::vector<std::string> cells;
    };

    // False with the reason in error() when the file cannot be read or has
    // no time column; the lines read so far are dropped.
    bool read(const std::string& path);

    const std::string& error() const { return m_error; }
    const std::vector<Column>& columns() const { return m_columns; }
    const std::vector<Row>& rows() const { return m_rows; }
    unsigned long skipped() const { return m_skipped; }

    // A gap or a text is not a number.
    static bool number(const std::string& cell, double& value);
    // CsvRecorder::timestamp's form; the offset (or Z) is optional, and so
    // are the milliseconds.
    static bool parseTime(const std::string& text, long long& msec);
    // "Engine speed [rpm] (ECU 7E8)"; a title without the parts is the name.
    static Column splitTitle(const std::string& title);

private:
    std::string m_error;
    std::vector<Column> m_columns;
    std::vector<Row> m_rows;
    unsigned long m_skipped = 0;
};

} // namespace Obd

#endif
