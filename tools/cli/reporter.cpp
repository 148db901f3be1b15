#include "reporter.h"

#include "reportreader.h"
#include "session.h"

namespace Cli {

Reporter::Reporter(Session& session)
    : m_session(session)
{
}

int Reporter::write(const std::string& path, std::ostream& out, std::ostream& err)
{
    const Obd::HtmlReport::Data data = Obd::ReportReader(m_session.proxy()).read();
    if (!Obd::ReportReader::write(data, path)) {
        err << "zarvane-cli: cannot write " << path << "\n";
        return 1;
    }
    out << "Report written to " << path << "\n";
    const bool anyRead = Obd::ReportReader::anyRead(data);
    if (!anyRead && !m_session.isLost())
        err << "zarvane-cli: could not read the trouble codes or the readiness\n";
    return anyRead ? 0 : 1;
}

} // namespace Cli
