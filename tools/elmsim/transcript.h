#ifndef ELMSIM_TRANSCRIPT_H
#define ELMSIM_TRANSCRIPT_H

#include <chrono>
#include <cstdio>
#include <mutex>
#include <string>

namespace ElmSim {

// Time-stamped log of every request and reply, control characters
// escaped so each exchange stays on one line:
//   12:03:04.512 +1.204 > 010C
//   12:03:04.513 +1.205 < 010C\r41 0C 0C 30 \r\r>
class Transcript
{
public:
    Transcript();
    ~Transcript();

    bool open(const std::string& path);
    bool isOpen() const { return m_file != nullptr; }
    void request(const std::string& line);
    void reply(const std::string& text);

    static std::string escape(const std::string& text);

private:
    void write(char direction, const std::string& text);

    std::mutex m_mutex;
    std::FILE* m_file;
    std::chrono::steady_clock::time_point m_start;
};

} // namespace ElmSim

#endif
