#ifndef OBD_CSVRECORDER_H
#define OBD_CSVRECORDER_H

#include <chrono>
#include <string>
#include <vector>

namespace Obd {

// Writes sampled values to a CSV file as they come: a time column (local
// ISO 8601 with milliseconds) then one column per value. Whole lines reach
// the file at least once a second, so a crash or a kill loses at most the
// last second and never leaves half a line.
class CsvRecorder
{
public:
    typedef std::chrono::system_clock::time_point Time;

    CsvRecorder();
    ~CsvRecorder();

    // Creates (or truncates) the file and writes the header; false with the
    // reason in error().
    bool open(const std::string& path, const std::vector<std::string>& columns);
    // One cell per column; an empty cell stands for a missing value.
    void addRow(const std::vector<std::string>& cells, Time when = std::chrono::system_clock::now());
    // Writes what is pending; called by addRow once a second has passed.
    bool flush();
    void close();

    bool isOpen() const { return m_fd >= 0; }
    const std::string& path() const { return m_path; }
    const std::string& error() const { return m_error; }
    unsigned long rows() const { return m_rows; }
    // Bytes written or pending.
    unsigned long long bytes() const { return m_bytes; }

    // 2026-11-23T20:47:39.123+01:00
    static std::string timestamp(Time when);
    // Quoted when it holds a comma, quote or line break.
    static std::string cell(const std::string& text);
    // A value's column: "Engine speed [rpm] (ECU 7E8)"; no brackets without a unit.
    static std::string columnTitle(const std::string& name, const std::string& unit, unsigned int ecuId);

private:
    int m_fd;
    std::string m_path;
    std::string m_error;
    std::string m_pending;
    size_t m_columns;
    unsigned long m_rows;
    unsigned long long m_bytes;
    std::chrono::steady_clock::time_point m_lastFlush;

    CsvRecorder(const CsvRecorder&) = delete;
    CsvRecorder& operator=(const CsvRecorder&) = delete;
};

} // namespace Obd

#endif
