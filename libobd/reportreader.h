#ifndef OBD_REPORTREADER_H
#define OBD_REPORTREADER_H

#include "htmlreport.h"

#include <functional>
#include <string>

namespace Obd {

class IObdProxy;

// Reads what the report shows from a discovered vehicle, one exchange after
// another on the caller's thread.
class ReportReader
{
public:
    explicit ReportReader(IObdProxy* proxy);

    // Asked before each exchange: once true, the rest is left unread (and
    // said so), so that a closing link need not wait for the whole report.
    void setStop(const std::function<bool()>& stop) { m_stop = stop; }
    HtmlReport::Data read();

    // Whether any ECU's codes or readiness could be read.
    static bool anyRead(const HtmlReport::Data& data);
    // Writes the page; false when the file could not be written.
    static bool write(const HtmlReport::Data& data, const std::string& path);

private:
    IObdProxy* m_proxy;
    std::function<bool()> m_stop;
};

} // namespace Obd

#endif
