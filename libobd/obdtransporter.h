#ifndef OBD_OBDTRANSPORTER_H
#define OBD_OBDTRANSPORTER_H

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Obd {

class CanResponse;
class IObdProxy;
class ObdParameter;

enum ExchangeResult {
    ER_OK = 0,      // some ECU's payload delivered (statuses say which)
    ER_NO_DATA = 1, // the scan tool returned an empty response
    ER_ERROR = 2    // no usable scan tool, or the response could not be split
};

// Carries one parameter through one request/response exchange and splits
// the reply into one payload per ECU. Holds no state between calls.
//
// The scan tool hands over the reply's lines: each frame is read from its own
// line, a line that cannot be read (or a frame of another request) costs only
// that line, and a malformed or incomplete answer only its ECU's result. Each
// ECU's read status (and the exchange's: time-out, error word) is left on the
// parameter. Text without line ends (hex run together) is split as before:
// the frames' own lengths say where the next identifier starts.
class ObdTransporter
{
public:
    // Per exchange, ordered by ECU id.
    typedef std::map<unsigned int, std::vector<unsigned char>> ByteTable;
    typedef std::map<unsigned int, std::unique_ptr<CanResponse>> CanTable;

    ObdTransporter();
    virtual ~ObdTransporter();

    ExchangeResult execute(IObdProxy* provider, ObdParameter* parameter);
    // The adapter's command text of request bytes: lower-case hex, no separators.
    static std::string commandText(const std::vector<unsigned char>& request);

    // The steps of an exchange, public so that each can be checked alone.
    // CAN: takes the identifier off the front of text.
    bool extractEcuId(unsigned int protocol, std::string& text, unsigned int& ecuId) const;
    bool splitCanResponse(unsigned int protocol, const std::string& text, CanTable& table) const;
    bool parseCanResponse(unsigned int protocol, const std::string& text,
                          ObdParameter* parameter) const;
    bool splitKwpResponse(const std::vector<unsigned char>& bytes, ByteTable& table) const;
    bool splitGuessedResponse(const std::vector<unsigned char>& bytes, ByteTable& table) const;
    bool parseNonCanResponse(unsigned int protocol, const std::string& text,
                             ObdParameter* parameter) const;
    // The reply's frame lines (status and error lines already taken out);
    // true when some ECU's answer was delivered. Text with line ends given to
    // parseCanResponse/parseNonCanResponse takes these.
    bool parseCanLines(unsigned int protocol, const std::vector<std::string>& lines,
                       ObdParameter* parameter) const;
    bool parseNonCanLines(unsigned int protocol, const std::vector<std::string>& lines,
                          ObdParameter* parameter) const;
    // Takes one frame off the front of text (identifier already removed).
    bool addCanFrame(std::string& text, CanResponse& canResponse) const;
};

} // namespace Obd

#endif
