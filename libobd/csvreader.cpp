#include "csvreader.h"

#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <sstream>

namespace Obd {

namespace {

// Days since 1970-01-01 of a proleptic Gregorian date.
long long daysFromCivil(int year, unsigned month, unsigned day)
{
    year -= month <= 2;
    const long long era = (year >= 0 ? year : year - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(year - era * 400);
    const unsigned doy = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<long long>(doe) - 719468;
}

bool digits(const std::string& text, size_t at, size_t count, int& value)
{
    if (at + count > text.size())
        return false;
    value = 0;
    for (size_t i = at; i < at + count; ++i) {
        if (!std::isdigit(static_cast<unsigned char>(text[i])))
            return false;
        value = value * 10 + (text[i] - '0');
    }
    return true;
}

// Splits text into records of cells; a quoted cell may hold commas, quotes
// and line breaks. A record whose quote never closes is flagged open.
struct Record
{
    std::vector<std::string> cells;
    bool open = false;
};

std::vector<Record> records(const std::string& text)
{
    std::vector<Record> out;
    Record record;
    std::string cell;
    bool quoted = false;
    auto finish = [&](bool open) {
        if (!cell.empty() && cell.back() == '\r')
            cell.pop_back();
        // A blank line is no record.
        if (!record.cells.empty() || !cell.empty() || open) {
            record.cells.push_back(cell);
            record.open = open;
            out.push_back(record);
        }
        record = Record();
        cell.clear();
    };
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            if (c == '"' && i + 1 < text.size() && text[i + 1] == '"') {
                cell += '"';
                ++i;
            } else if (c == '"') {
                quoted = false;
            } else {
                cell += c;
            }
        } else if (c == '"' && cell.empty()) {
            quoted = true;
        } else if (c == ',') {
            record.cells.push_back(cell);
            cell.clear();
        } else if (c == '\n') {
            finish(false);
        } else {
            cell += c;
        }
    }
    if (quoted || !record.cells.empty() || !cell.empty())
        finish(quoted);
    return out;
}

} // namespace

bool CsvReader::read(const std::string& path)
{
    m_error.clear();
    m_columns.clear();
    m_rows.clear();
    m_skipped = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        m_error = path + ": " + std::strerror(errno);
        return false;
    }
    std::ostringstream content;
    content << file.rdbuf();
    const std::vector<Record> all = records(content.str());
    if (all.empty() || all.front().open || all.front().cells.empty() || all.front().cells.front() != "time") {
        m_error = path + ": not a recording (no time column)";
        return false;
    }
    for (size_t i = 1; i < all.front().cells.size(); ++i)
        m_columns.push_back(splitTitle(all.front().cells[i]));
    for (size_t i = 1; i < all.size(); ++i) {
        const Record& record = all[i];
        Row row;
        if (record.open || record.cells.size() != m_columns.size() + 1 || !parseTime(record.cells[0], row.msec)) {
            ++m_skipped;
            continue;
        }
        row.cells.assign(record.cells.begin() + 1, record.cells.end());
        m_rows.push_back(std::move(row));
    }
    return true;
}

bool CsvReader::number(const std::string& cell, double& value)
{
    const char* begin = cell.data();
    const char* end = begin + cell.size();
    // from_chars, unlike strtod, ignores the process locale.
    const std::from_chars_result result = std::from_chars(begin, end, value);
    return !cell.empty() && result.ec == std::errc() && result.ptr == end;
}

bool CsvReader::parseTime(const std::string& text, long long& msec)
{
    int year, month, day, hour, minute, second;
    if (!digits(text, 0, 4, year) || text.size() < 19 || text[4] != '-' || !digits(text, 5, 2, month)
        || text[7] != '-' || !digits(text, 8, 2, day) || text[10] != 'T' || !digits(text, 11, 2, hour)
        || text[13] != ':' || !digits(text, 14, 2, minute) || text[16] != ':' || !digits(text, 17, 2, second))
        return false;
    if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60)
        return false;
    size_t at = 19;
    int millis = 0;
    if (at < text.size() && text[at] == '.') {
        if (!digits(text, at + 1, 3, millis))
            return false;
        at += 4;
    }
    // Without an offset the time is taken as UTC.
    int offsetMinutes = 0;
    if (at < text.size() && text[at] == 'Z') {
        ++at;
    } else if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
        int hours, minutes;
        const size_t colon = at + 3 < text.size() && text[at + 3] == ':' ? 1 : 0;
        if (!digits(text, at + 1, 2, hours) || !digits(text, at + 3 + colon, 2, minutes))
            return false;
        offsetMinutes = (text[at] == '-' ? -1 : 1) * (hours * 60 + minutes);
        at += 5 + colon;
    }
    if (at != text.size())
        return false;
    const long long seconds = daysFromCivil(year, unsigned(month), unsigned(day)) * 86400LL + hour * 3600LL
        + minute * 60LL + second - offsetMinutes * 60LL;
    msec = seconds * 1000 + millis;
    return true;
}

CsvReader::Column CsvReader::splitTitle(const std::string& title)
{
    Column column{ title, title, std::string(), std::string() };
    std::string rest = title;
    const std::string ecuMark = " (ECU ";
    const size_t ecu = rest.rfind(ecuMark);
    if (ecu != std::string::npos && rest.back() == ')') {
        column.ecu = rest.substr(ecu + ecuMark.size(), rest.size() - ecu - ecuMark.size() - 1);
        rest.erase(ecu);
    }
    const size_t unit = rest.rfind(" [");
    if (unit != std::string::npos && !rest.empty() && rest.back() == ']') {
        column.unit = rest.substr(unit + 2, rest.size() - unit - 3);
        rest.erase(unit);
    }
    column.name = rest;
    return column;
}

} // namespace Obd
