#ifndef CLI_CLIAPPLICATION_H
#define CLI_CLIAPPLICATION_H

#include "ecu.h"
#include "options.h"

#include <atomic>
#include <iosfwd>
#include <string>
#include <vector>

namespace Obd {
class ObdParameter;
}

namespace Cli {

class Printer;
class Session;

// zarvane-cli: every command, given the streams to use, so that tests run
// it in-process.
class CliApplication
{
public:
    enum ExitCode {
        EXIT_OK = 0,
        EXIT_FAILED = 1,
        EXIT_BAD_ARGUMENT = 2,
        EXIT_CANNOT_CONNECT = 3,
        EXIT_NOT_IDENTIFIED = 4,
        EXIT_NOT_REACHED = 5
    };

    CliApplication(std::ostream& out, std::ostream& err, std::istream& in);

    // Whether standard input/error are terminals (a question for clear, the
    // progress line during discovery).
    void setInteractive(bool inputIsTerminal, bool errorIsTerminal);
    // Set from a signal handler to end live output.
    static std::atomic<bool>& interrupted();

    int run(const std::vector<std::string>& args);

private:
    int lookup(Printer& printer);
    int search(Printer& printer);
    int info(Session& session, Printer& printer);
    int dtc(Session& session, Printer& printer);
    int clear(Session& session, Printer& printer);
    int live(Session& session, Printer& printer);
    int vehicle(Session& session, Printer& printer);
    int tests(Session& session, Printer& printer);
    int bench(Session& session, Printer& printer);

    bool execute(Session& session, Obd::ObdParameter& parameter);
    int badArgument(const std::string& message);
    // PID numbers from hex text or names; false with a message for an unknown one.
    bool resolvePids(std::vector<unsigned char>& pids);
    std::vector<Obd::EcuPtr> ecus(Session& session);

    std::ostream& m_out;
    std::ostream& m_err;
    std::istream& m_in;
    bool m_inputIsTerminal;
    bool m_errorIsTerminal;
    Options m_options;
};

} // namespace Cli

#endif
