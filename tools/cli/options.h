#ifndef CLI_OPTIONS_H
#define CLI_OPTIONS_H

#include "adapteraddress.h"

#include <string>
#include <vector>

namespace Cli {

// The command line of zarvane-cli, parsed.
class Options
{
public:
    Options();

    // False with a message in error() for a bad command line.
    bool parse(const std::vector<std::string>& args);

    std::string error() const { return m_error; }
    static std::string usage();
    // The adapter the options point at: serial, else Bluetooth, else TCP.
    Obd::AdapterAddress address() const;

    std::string command;
    std::vector<std::string> arguments;
    std::string host;
    unsigned int port;
    std::string bluetoothAddress;
    std::string serialDevice;
    unsigned int baud;   // AdapterAddress::AUTO_BAUD: detected
    bool json;
    bool imperial;
    bool yes;
    bool help;
    bool verbose;
    bool noReset;        // open with a warm start instead of ATZ
    bool reconnect;      // live, record: go on through a lost link
    int periodMs;
    int count;
    std::string outFile; // record, report
    int durationS;       // record: seconds, 0 no limit

private:
    bool number(const std::string& option, const std::string& text, long minimum, long maximum,
                long& value);

    std::string m_error;
};

} // namespace Cli

#endif
