#ifndef CLI_RECORDER_H
#define CLI_RECORDER_H

#include <atomic>
#include <ostream>
#include <string>
#include <vector>

namespace Cli {

class Options;
class Session;

// zarvane-cli record: live PIDs sampled to a CSV file, one column per PID
// value and ECU, until --count samples, --duration seconds or Ctrl-C. With
// --reconnect a lost link leaves one row of empty cells and is opened again.
class Recorder
{
public:
    Recorder(Session& session, const Options& options, std::ostream& out, std::ostream& err);

    // The progress line (samples, duration, file size) on out.
    void setProgress(bool shown) { m_progress = shown; }
    int run(const std::vector<unsigned char>& pids, const std::atomic<bool>& interrupted);

private:
    Session& m_session;
    const Options& m_options;
    std::ostream& m_out;
    std::ostream& m_err;
    bool m_progress;
};

} // namespace Cli

#endif
