#ifndef CLI_REPORTER_H
#define CLI_REPORTER_H

#include "htmlreport.h"

#include <ostream>
#include <string>

namespace Cli {

class Session;

// The report command: the library reads the vehicle behind the session and
// renders the page; this says how it went.
class Reporter
{
public:
    explicit Reporter(Session& session);

    // Reads and writes the page to path; the exit code of the command.
    int write(const std::string& path, std::ostream& out, std::ostream& err);

private:
    Session& m_session;
};

} // namespace Cli

#endif
