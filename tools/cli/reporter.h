#ifndef CLI_REPORTER_H
#define CLI_REPORTER_H

#include "htmlreport.h"

#include <ostream>
#include <string>

namespace Cli {

class Session;

// Reads what a report shows from the vehicle behind a session.
class Reporter
{
public:
    explicit Reporter(Session& session);

    HtmlReport::Data read();
    // Reads and writes the page to path; the exit code of the command.
    int write(const std::string& path, std::ostream& out, std::ostream& err);

private:
    Session& m_session;
};

} // namespace Cli

#endif
