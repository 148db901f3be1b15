#include "csvrecorder.h"
#include "ecu.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <unistd.h>

namespace Obd {

CsvRecorder::CsvRecorder()
    : m_fd(-1)
    , m_columns(0)
    , m_rows(0)
    , m_bytes(0)
{
}

CsvRecorder::~CsvRecorder()
{
    close();
}

bool CsvRecorder::open(const std::string& path, const std::vector<std::string>& columns)
{
    close();
    m_fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (m_fd < 0) {
        m_error = path + ": " + std::strerror(errno);
        return false;
    }
    m_path = path;
    m_columns = columns.size();
    m_rows = 0;
    m_bytes = 0;
    m_pending = "time";
    for (const std::string& column : columns)
        m_pending += "," + cell(column);
    m_pending += "\n";
    m_bytes = m_pending.size();
    // The header at once: a recording killed early still says what it held.
    return flush();
}

void CsvRecorder::addRow(const std::vector<std::string>& cells, Time when)
{
    if (m_fd < 0)
        return;
    std::string line = timestamp(when);
    for (size_t i = 0; i < m_columns; ++i)
        line += "," + (i < cells.size() ? cell(cells[i]) : std::string());
    line += "\n";
    m_pending += line;
    m_bytes += line.size();
    ++m_rows;
    if (std::chrono::steady_clock::now() - m_lastFlush >= std::chrono::seconds(1))
        flush();
}

bool CsvRecorder::flush()
{
    m_lastFlush = std::chrono::steady_clock::now();
    size_t done = 0;
    while (m_fd >= 0 && done < m_pending.size()) {
        ssize_t n = ::write(m_fd, m_pending.data() + done, m_pending.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            m_error = m_path + ": " + std::strerror(errno);
            m_pending.erase(0, done);
            return false;
        }
        done += static_cast<size_t>(n);
    }
    m_pending.clear();
    return true;
}

void CsvRecorder::close()
{
    if (m_fd < 0)
        return;
    flush();
    ::close(m_fd);
    m_fd = -1;
}

std::string CsvRecorder::timestamp(Time when)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
    const long ms = static_cast<long>(
        std::chrono::duration_cast<std::chrono::milliseconds>(when.time_since_epoch()).count() % 1000);
    std::tm local;
    localtime_r(&seconds, &local);
    char date[32];
    std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &local);
    char zone[8];
    std::strftime(zone, sizeof zone, "%z", &local);
    // +0100 -> +01:00
    std::string offset(zone);
    if (offset.size() == 5)
        offset.insert(3, ":");
    char millis[8];
    std::snprintf(millis, sizeof millis, ".%03ld", ms < 0 ? ms + 1000 : ms);
    return std::string(date) + millis + offset;
}

std::string CsvRecorder::cell(const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (char c : text)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

std::string CsvRecorder::columnTitle(const std::string& name, const std::string& unit, unsigned int ecuId)
{
    return name + (unit.empty() ? "" : " [" + unit + "]") + " (ECU " + Ecu::idText(ecuId) + ")";
}

} // namespace Obd
