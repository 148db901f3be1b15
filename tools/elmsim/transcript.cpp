#include "transcript.h"

#include <ctime>

namespace ElmSim {

Transcript::Transcript()
    : m_file(nullptr)
    , m_start(std::chrono::steady_clock::now())
{
}

Transcript::~Transcript()
{
    if (m_file)
        std::fclose(m_file);
}

bool Transcript::open(const std::string& path)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_file)
        std::fclose(m_file);
    m_file = std::fopen(path.c_str(), "a");
    m_start = std::chrono::steady_clock::now();
    return m_file != nullptr;
}

void Transcript::request(const std::string& line)
{
    write('>', line);
}

void Transcript::reply(const std::string& text)
{
    write('<', text);
}

std::string Transcript::escape(const std::string& text)
{
    static const char HEX[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(text.size() + 8);
    for (unsigned char c : text) {
        if (c == '\r') {
            out += "\\r";
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\\') {
            out += "\\\\";
        } else if (c < 0x20 || c >= 0x7F) {
            out += "\\x";
            out.push_back(HEX[c >> 4]);
            out.push_back(HEX[c & 0x0F]);
        } else {
            out.push_back(static_cast<char>(c));
        }
    }
    return out;
}

void Transcript::write(char direction, const std::string& text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_file)
        return;
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const long millis = static_cast<long>(
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000);
    const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
    std::tm local{};
    localtime_r(&seconds, &local);
    char stamp[32];
    std::strftime(stamp, sizeof(stamp), "%H:%M:%S", &local);
    std::fprintf(m_file, "%s.%03ld +%.3f %c %s\n", stamp, millis, elapsed, direction, escape(text).c_str());
    std::fflush(m_file);
}

} // namespace ElmSim
