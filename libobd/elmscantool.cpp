#include "elmscantool.h"

#include "elmtransport.h"
#include "iconnection.h"
#include "trlog.h"

#include <QRegularExpression>
#include <QString>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <sstream>

namespace Obd {

namespace {

const char* const ACK = "OK";
const char* const ELM_MARKER = "ELM";
const unsigned char PROMPT = '>';
const unsigned char CARRIAGE_RETURN = '\r';

// Error words the adapter prints instead of data, searched in this order in
// the reply without spaces; the first found decides. "ERR" comes last so the
// longer words win. Code 1 is kept free. The reaction: a word that comes from
// a passing bus or link state is worth one more try; one that says the
// adapter lost its settings calls for setting it up again.
const ScantoolError::Reaction REPORT = ScantoolError::RE_REPORT;
const ScantoolError::Reaction RETRY = ScantoolError::RE_RETRY;
const ScantoolError::Reaction REINITIALISE = ScantoolError::RE_REINITIALISE;
struct ErrorWord
{
    const char* key;
    int code;
    const char* word;
    ScantoolError::Reaction reaction;
};
const ErrorWord ERROR_WORDS[] = {
    { "NODATA",           ElmScantool::ERROR_NO_DATA,           "NO DATA",           REPORT },
    { "UNABLETOCONNECT",  ElmScantool::ERROR_UNABLE_TO_CONNECT, "UNABLE TO CONNECT", REPORT },
    { "BUSINIT:...ERROR", ElmScantool::ERROR_BUS_INIT,          "BUS INIT...ERROR",  RETRY },
    { "BUFFERFULL",       ElmScantool::ERROR_BUFFER_FULL,       "BUFFER FULL",       RETRY },
    { "BUSBUSY",          ElmScantool::ERROR_BUS_BUSY,          "BUS BUSY",          RETRY },
    { "BUSERROR",         ElmScantool::ERROR_BUS_ERROR,         "BUS ERROR",         REPORT },
    { "CANERROR",         ElmScantool::ERROR_CAN_ERROR,         "CAN ERROR",         REPORT },
    { "<DATAERROR",       ElmScantool::ERROR_DATA_ERROR,        "<DATA ERROR",       RETRY },
    { "DATAERROR",        ElmScantool::ERROR_DATA_ERROR,        "DATA ERROR",        RETRY },
    { "FBERROR",          ElmScantool::ERROR_FB_ERROR,          "FB ERROR",          REPORT },
    { "LVRESET",          ElmScantool::ERROR_LV_RESET,          "LV RESET",          REINITIALISE },
    { "<RXERROR",         ElmScantool::ERROR_RX_ERROR,          "<RX ERROR",         RETRY },
    { "RXERROR",          ElmScantool::ERROR_RX_ERROR,          "RX ERROR",          RETRY },
    { "STOPPED",          ElmScantool::ERROR_STOPPED,           "STOPPED",           RETRY },
    { "ACTALERT",         ElmScantool::ERROR_ACT_ALERT,         "ACT ALERT",         REPORT },
    { "LPALERT",          ElmScantool::ERROR_LP_ALERT,          "LP ALERT",          REPORT },
    { "ERR",              ElmScantool::ERROR_ERR,               "ERR",               REINITIALISE },
};

// What the adapter prints around data that is neither data nor an error.
const char* const STATUS_WORDS[] = { "SEARCHING...", "BUS INIT:", "...OK" };

// Frames ("7E8 06 41 00 ...", "0: 49 02 ...", "014"), possibly after a status.
bool isDataLine(const std::string& line)
{
    std::string rest = line;
    for (const char* status : STATUS_WORDS) {
        for (size_t at = rest.find(status); at != std::string::npos; at = rest.find(status))
            rest.erase(at, std::strlen(status));
    }
    for (char c : rest) {
        if (!std::isxdigit(static_cast<unsigned char>(c)) && c != ' ' && c != ':')
            return false;
    }
    return true;
}

// Baud-rate commands: "ATBRD" + divisor for ordinary adapters, "ATSCS" + code
// for the OBDPros family. Null: not offered.
struct BaudRate
{
    unsigned int baud;
    const char* divisor;
    const char* obdProsCode;
};
const BaudRate BAUD_RATES[] = {
    {   9600, nullptr, "1" },
    {  19200, "D0",    "3" },
    {  38400, "68",    "4" },
    {  57600, "45",    "5" },
    { 115200, "23",    "6" },
};

// ATDPN digit (after the 'A' of an automatic choice) to protocol class.
unsigned int protocolClass(char digit)
{
    switch (digit) {
    case '3':
        return PROTOCOL_ISO9141;
    case '4':
    case '5':
        return PROTOCOL_KWP2000;
    case '1':
    case '2':
        return PROTOCOL_J1850;
    case '6':
    case '8':
        return PROTOCOL_CAN_11BIT;
    case '7':
    case '9':
        return PROTOCOL_CAN_29BIT;
    default:
        return PROTOCOL_UNKNOWN;
    }
}

void cutFirst(std::string& text, const std::string& piece)
{
    size_t at = text.find(piece);
    if (at != std::string::npos)
        text.erase(at, piece.size());
}

std::string trimmed(const std::string& text)
{
    size_t first = 0;
    size_t last = text.size();
    while (first < last && std::isspace(static_cast<unsigned char>(text[first])))
        ++first;
    while (last > first && std::isspace(static_cast<unsigned char>(text[last - 1])))
        --last;
    return text.substr(first, last - first);
}

bool contains(const std::string& text, const char* piece)
{
    return text.find(piece) != std::string::npos;
}

} // namespace

ElmScantool::ElmScantool()
    : m_connection(nullptr)
    , m_initialized(false)
    , m_protocol(PROTOCOL_UNKNOWN)
    , m_headersOn(false)
    , m_requestedProtocol(0)
    , m_owed(0)
    , m_owedBoundMs(0)
{
}

ElmScantool::~ElmScantool()
{
}

ElmScantool* ElmScantool::create(IConnection* connection)
{
    if (!connection)
        return nullptr;
    connection->setDelimiter(PROMPT);
    ElmScantool* scantool = new ElmScantool;
    scantool->setConnection(connection);
    return scantool;
}

int ElmScantool::findAdapterError(const std::vector<unsigned char>& reply)
{
    std::string text;
    text.reserve(reply.size());
    for (unsigned char c : reply) {
        if (c != ' ')
            text.push_back(static_cast<char>(c));
    }
    cutFirst(text, "SEARCHING...");
    if (text == "?")
        return ERROR_UNKNOWN_COMMAND;
    for (const ErrorWord& error : ERROR_WORDS) {
        if (text.find(error.key) != std::string::npos)
            return error.code;
    }
    return ERROR_NONE;
}

ScantoolError ElmScantool::describeAdapterError(const std::vector<unsigned char>& reply)
{
    ScantoolError error;
    const int code = findAdapterError(reply);
    if (code == ERROR_NONE)
        return error;
    error.status = ScantoolError::SE_ERROR_WORD;
    if (code == ERROR_UNKNOWN_COMMAND) {
        error.word = "?";
        return error;
    }
    std::string text;
    for (unsigned char c : reply) {
        if (c != ' ')
            text.push_back(static_cast<char>(c));
    }
    cutFirst(text, "SEARCHING...");
    for (const ErrorWord& row : ERROR_WORDS) {
        const size_t at = text.find(row.key);
        if (at == std::string::npos)
            continue;
        error.word = row.word;
        error.reaction = row.reaction;
        if (row.code == ERROR_ERR) // "ERR94": the number says which
            error.word = text.substr(at, 5);
        break;
    }
    return error;
}

void ElmScantool::setConnection(IConnection* connection)
{
    m_connection = connection;
    setDelimiter(PROMPT);
}

bool ElmScantool::checkDevice()
{
    drain(0);
    std::string reply;
    if (atCommand("ATI", reply) && contains(reply, ELM_MARKER))
        return true;
    return atCommand("ATI", reply) && contains(reply, ELM_MARKER);
}

bool ElmScantool::setBaudRateTimeout()
{
    if (isOBDProsAdapter())
        return true;
    // Best effort: the adapter keeps its default timeout if this fails.
    if (!send("ATBRT1F"))
        return true;
    std::string reply = readJoined(250, 50);
    if (!contains(reply, ACK))
        OBD_ERROR << "Failed to set baud rate set timeout" << reply;
    return true;
}

bool ElmScantool::changeBaudRate(unsigned int baud)
{
    const bool obdPros = isOBDProsAdapter();
    const char* suffix = nullptr;
    for (const BaudRate& rate : BAUD_RATES) {
        if (rate.baud == baud)
            suffix = obdPros ? rate.obdProsCode : rate.divisor;
    }
    if (!suffix) {
        OBD_ERROR << "Baud rate not supported: " << baud;
        return false;
    }
    // The adapter answers at the old rate with "OK" and no prompt.
    setDelimiter(CARRIAGE_RETURN);
    if (!send(std::string(obdPros ? "ATSCS" : "ATBRD") + suffix))
        return false;
    if (!contains(readJoined(250, 50), ACK)) {
        OBD_ERROR << "Failed to get response to baud rate change";
        return false;
    }
    return true;
}

bool ElmScantool::confirmBaudRate()
{
    if (isOBDProsAdapter())
        return checkDevice();
    // At the new rate the adapter prints its identification and waits for a bare CR.
    setDelimiter(CARRIAGE_RETURN);
    if (!contains(readJoined(500, 100), ELM_MARKER))
        return false;
    if (!send(std::string()))
        return false;
    std::string reply = readJoined(500, 100);
    if (!contains(reply, ACK)) {
        OBD_ERROR << "Failed to get final response to baud rate change " << reply;
        return false;
    }
    // The delimiter stays at CR: initialize() puts the prompt back.
    return true;
}

bool ElmScantool::reset()
{
    return restart("ATZ");
}

bool ElmScantool::warmStart()
{
    if (restart("ATWS"))
        return true;
    std::string reply;
    // Without a warm start the defaults at least undo what an earlier client set.
    return atCommand("ATD", reply) && contains(reply, ACK);
}

void ElmScantool::sendReset()
{
    send("ATZ");
}

bool ElmScantool::identify()
{
    std::string reply;
    atCommand("ATI", reply);
    if (!identifyDevice(reply))
        return false;
    readChip();
    return true;
}

bool ElmScantool::readDescription()
{
    std::string reply;
    if (!atCommand("AT@1", reply))
        return m_connection && m_connection->isConnected();
    if (reply == "?") {
        // Clones refuse it; the chip's own name stands in where known.
        OBD_INFO << "No description from the adapter (AT@1 refused)";
        m_deviceDescription = m_chip;
        return true;
    }
    m_deviceDescription = trimmed(reply);
    return true;
}

void ElmScantool::readChip()
{
    // STN chips answer STI with their name; ELM327s and clones with "?".
    std::string reply;
    m_chip.clear();
    if (atCommand("STI", reply) && reply != "?" && contains(reply, "STN")) {
        m_chip = trimmed(reply);
        OBD_INFO << "STN-based adapter: " << m_chip;
    }
}

bool ElmScantool::initialize(unsigned int protocol)
{
    m_requestedProtocol = protocol;
    // Replies so far were read to their prompt: only bytes already here are
    // stale, and noise after a reset is dropped with the next reply's lines.
    drain(0);
    setDelimiter(PROMPT);
    // Echo and line feeds are stripped from replies anyway: a clone that
    // refuses either can still be used.
    if (trySetting("ATE0", "Failed to set echo off. Response: ") == SR_FAILED)
        return m_initialized;
    if (trySetting("ATL0", "Failed to set linefeed off. Response: ") == SR_FAILED)
        return m_initialized;
    if (!setTryProtocol(protocol))
        return m_initialized;
    m_initialized = true;
    return true;
}

bool ElmScantool::identifyProtocol()
{
    std::string number;
    atCommand("ATDPN", number);
    if (number.empty())
        return false;
    // "A6": 'A' marks a protocol the adapter chose itself.
    cutFirst(number, "A");
    number.erase(std::remove(number.begin(), number.end(), ' '), number.end());
    if (number.size() != 1) {
        OBD_DEBUG << "Invalid response";
        return false;
    }
    m_protocol = protocolClass(number[0]);

    std::string name;
    atCommand("ATDP", name);
    if (name.empty())
        return false;
    // "AUTO, ISO 15765-4 (CAN 11/500)"
    cutFirst(name, "AUTO");
    cutFirst(name, ",");
    m_protocolName = trimmed(name);
    return true;
}

bool ElmScantool::isInitialized() const
{
    return m_initialized;
}

bool ElmScantool::setHeadersOn()
{
    if (!setting("ATH1", "Failed to set headers on. Response: "))
        return false;
    m_headersOn = true;
    return true;
}

bool ElmScantool::setDlcDisplayOn()
{
    return setting("ATD1", "Failed to set DLC display ok", false);
}

bool ElmScantool::setHeadersOff()
{
    if (!setting("ATH0", "Failed to set headers off. Response: "))
        return false;
    m_headersOn = false;
    return true;
}

bool ElmScantool::isHeadersOn() const
{
    return m_headersOn;
}

bool ElmScantool::setTryProtocol(unsigned int protocol)
{
    // Lower-case hexadecimal: protocol 10 is "ATTPa".
    std::ostringstream command;
    command << "ATTP" << std::hex << std::nouppercase << protocol;
    return setting(command.str(), "Failed to set try protocol. Response: ");
}

DeviceInfo ElmScantool::getDeviceInfo() const
{
    DeviceInfo info;
    info.name = m_deviceName;
    info.description = m_deviceDescription;
    info.version = m_deviceVersion;
    info.chip = m_chip;
    return info;
}

unsigned int ElmScantool::getProtocol() const
{
    return m_protocol;
}

std::string ElmScantool::getProtocolName() const
{
    return m_protocolName;
}

bool ElmScantool::sendCommand(const std::vector<unsigned char>& command,
                              std::vector<unsigned char>& response, unsigned int timeoutMs)
{
    if (exchange(command, response, timeoutMs))
        return true;
    const ScantoolError first = m_lastError;
    if (first.status != ScantoolError::SE_ERROR_WORD || first.reaction == ScantoolError::RE_REPORT)
        return false;
    if (first.reaction == ScantoolError::RE_REINITIALISE && !reinitialise())
        return false;
    OBD_INFO << "Retrying after " << first.word;
    return exchange(command, response, timeoutMs);
}

bool ElmScantool::exchange(const std::vector<unsigned char>& command,
                           std::vector<unsigned char>& response, unsigned int timeoutMs)
{
    // A failed exchange must not leave an earlier reply for the caller to decode.
    response.clear();
    m_lastError = ScantoolError();
    if (!sendBytes(command)) {
        m_lastError.status = ScantoolError::SE_NOT_CONNECTED;
        return false;
    }
    std::vector<std::string> lines;
    if (!readDataLines(std::string(command.begin(), command.end()), lines, timeoutMs))
        return false;
    std::string joined;
    for (const std::string& line : lines)
        joined += line;
    const ScantoolError word = describeAdapterError(std::vector<unsigned char>(joined.begin(), joined.end()));
    if (word.status != ScantoolError::SE_NONE) {
        m_lastError = word;
        OBD_ERROR << "Got error from adapter: " << word.word;
        return false;
    }
    for (char c : joined) {
        if (c != ' ')
            response.push_back(static_cast<unsigned char>(c));
    }
    return true;
}

bool ElmScantool::readDataLines(const std::string& command, std::vector<std::string>& lines,
                                unsigned int timeoutMs)
{
    const int status = readLines(lines, timeoutMs);
    if (status != 0) {
        m_lastError.status = status == 2 ? ScantoolError::SE_NOT_CONNECTED : ScantoolError::SE_TIMEOUT;
        return false;
    }
    // An echo the adapter still prints (a refused ATE0, or settings lost) is no data.
    if (!lines.empty() && trimmed(lines.front()) == command)
        lines.erase(lines.begin());
    std::vector<std::string> kept;
    std::string dropped;
    for (const std::string& line : lines) {
        if (findAdapterError(std::vector<unsigned char>(line.begin(), line.end())) != ERROR_NONE
            || isDataLine(line))
            kept.push_back(line);
        else
            dropped += (dropped.empty() ? "" : " | ") + line;
    }
    lines.swap(kept);
    if (dropped.empty())
        return true;
    if (lines.empty()) {
        m_lastError.status = ScantoolError::SE_UNREADABLE;
        m_lastError.word = ElmTransport::escaped(dropped);
        OBD_ERROR << "Unreadable reply to " << command << ": " << m_lastError.word;
        return false;
    }
    OBD_INFO << "Unreadable line dropped: " << ElmTransport::escaped(dropped);
    return true;
}

bool ElmScantool::sendObdCommand(const std::string& command, std::string& response,
                                 unsigned int timeoutMs)
{
    // An error word worth a second try gets one, as in sendCommand().
    for (int attempt = 0; attempt < 2; ++attempt) {
        response.clear();
        m_lastError = ScantoolError();
        if (!send(command)) {
            m_lastError.status = ScantoolError::SE_NOT_CONNECTED;
            return false;
        }
        std::vector<std::string> lines;
        const int status = readLines(lines, timeoutMs);
        if (status != 0) {
            m_lastError.status = status == 2 ? ScantoolError::SE_NOT_CONNECTED : ScantoolError::SE_TIMEOUT;
            return false;
        }
        if (!lines.empty() && lines.front() == command)
            lines.erase(lines.begin());
        // The lines stay: they tell the frames apart, whatever each one's length.
        // An error word fails the exchange, but its line and any data still come.
        std::string joined;
        for (const std::string& line : lines) {
            const std::string kept = trimmed(line);
            if (kept.empty())
                continue;
            response += (response.empty() ? "" : "\r") + kept;
            joined += kept;
        }
        const ScantoolError word = describeAdapterError(std::vector<unsigned char>(joined.begin(), joined.end()));
        if (word.status == ScantoolError::SE_NONE)
            return true;
        m_lastError = word;
        OBD_ERROR << "Got error from adapter: " << word.word;
        if (attempt > 0 || word.reaction == ScantoolError::RE_REPORT
            || (word.reaction == ScantoolError::RE_REINITIALISE && !reinitialise()))
            return false;
        OBD_INFO << "Retrying after " << word.word;
    }
    return false;
}

bool ElmScantool::sendBytes(const std::vector<unsigned char>& command)
{
    settleOwedReplies();
    if (ElmTransport::send(m_connection, command) == 0)
        return true;
    resetState();
    return false;
}

bool ElmScantool::send(const std::string& command)
{
    return sendBytes(std::vector<unsigned char>(command.begin(), command.end()));
}

int ElmScantool::readLines(std::vector<std::string>& lines, unsigned int timeoutMs)
{
    const int status = ElmTransport::receiveLines(m_connection, lines, timeoutMs);
    if (status == 2) {
        resetState();
    } else if (status == 1) {
        // The adapter may still answer: its prompt belongs to this command.
        ++m_owed;
        m_owedBoundMs = timeoutMs;
    }
    return status;
}

void ElmScantool::settleOwedReplies()
{
    while (m_owed > 0) {
        const int status = ElmTransport::discard(m_connection, m_owedBoundMs);
        if (status != 0) {
            // Not in its bound either: the adapter is taken to have dropped it.
            if (status == 1)
                OBD_INFO << m_owed << " late replies never came";
            m_owed = 0;
            return;
        }
        --m_owed;
    }
}

bool ElmScantool::readResponse(std::vector<unsigned char>& reply, unsigned int timeoutMs)
{
    std::vector<std::string> lines;
    int status = readLines(lines, timeoutMs);
    reply.clear();
    for (const std::string& line : lines)
        reply.insert(reply.end(), line.begin(), line.end());
    if (status != 0)
        return false;
    int error = findAdapterError(reply);
    if (error != ERROR_NONE) {
        reply.clear();
        OBD_ERROR << "Got error from adapter: " << error;
        return false;
    }
    return true;
}

bool ElmScantool::read(std::string& text, unsigned int timeoutMs)
{
    std::vector<unsigned char> reply;
    if (!readResponse(reply, timeoutMs))
        return false;
    text.assign(reply.begin(), reply.end());
    return true;
}

std::string ElmScantool::readJoined(unsigned int firstMs, unsigned int secondMs)
{
    // Around a baud-rate change lines end in CR only: the second read is
    // expected to time out, and owes nothing.
    std::string joined;
    for (unsigned int timeoutMs : { firstMs, secondMs }) {
        std::vector<unsigned char> part;
        if (ElmTransport::receive(m_connection, part, timeoutMs) == 2)
            resetState();
        joined.append(part.begin(), part.end());
    }
    return joined;
}

void ElmScantool::drain(unsigned int timeoutMs)
{
    // Whatever is still on its way, not a reply anyone waits for.
    if (ElmTransport::discard(m_connection, timeoutMs) == 2)
        resetState();
}

bool ElmScantool::atCommand(const std::string& command, std::string& reply, unsigned int timeoutMs)
{
    reply.clear();
    if (!send(command))
        return false;
    std::vector<std::string> lines;
    if (readLines(lines, timeoutMs) != 0)
        return false;
    // The answer is one line; what follows it before the prompt is noise.
    for (const std::string& line : lines) {
        std::string text = line;
        if (reply.empty() && line.compare(0, command.size(), command) == 0)
            text.erase(0, command.size()); // the echo, or the echo glued to the answer
        text = trimmed(text);
        if (text.empty())
            continue;
        if (reply.empty())
            reply = text;
        else
            OBD_DEBUG << "Dropped after the answer to " << command << ": " << ElmTransport::escaped(text);
    }
    return true;
}

ElmScantool::SettingResult ElmScantool::trySetting(const std::string& command, const char* failureText,
                                                   bool appendReply)
{
    std::string reply;
    const bool answered = atCommand(command, reply);
    if (answered && contains(reply, ACK))
        return SR_OK;
    if (appendReply)
        OBD_ERROR << failureText << reply;
    else
        OBD_ERROR << failureText;
    return answered && reply == "?" ? SR_REFUSED : SR_FAILED;
}

bool ElmScantool::setting(const std::string& command, const char* failureText, bool appendReply)
{
    return trySetting(command, failureText, appendReply) == SR_OK;
}

bool ElmScantool::reinitialise()
{
    // The adapter came back with its defaults: echo on, headers off, protocol automatic.
    OBD_INFO << "Setting the adapter up again";
    const bool headers = m_headersOn;
    trySetting("ATE0", "Failed to set echo off. Response: ");
    trySetting("ATL0", "Failed to set linefeed off. Response: ");
    if (!setTryProtocol(m_requestedProtocol))
        return false;
    return headers ? setHeadersOn() : setHeadersOff();
}

namespace {

// "ELM327 v1.5": a name ending in digits, then a version such as v1.5 or v1.4b.
QRegularExpressionMatch bannerMatch(const std::string& reply)
{
    static const QRegularExpression PATTERN(QStringLiteral("\\b(\\S+[0-9]{1,3})\\s?(\\S\\d+\\.\\d+\\S?)"));
    return PATTERN.match(QString::fromStdString(reply));
}

} // namespace

bool ElmScantool::restart(const std::string& command)
{
    // Only bytes already here are surely stale. The end of a reply still on
    // its way comes back as the "answer" to the reset, and the banner is
    // read after it; a reset swallowed by a search it STOPPED is sent again.
    drain(0);
    std::string reply;
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (!atCommand(command, reply, RESET_TIMEOUT_MS))
            return false;
        if (reply == "?" || bannerMatch(reply).hasMatch())
            break;
        if (!reply.empty())
            OBD_INFO << "Before the banner, an earlier reply: " << ElmTransport::escaped(reply);
        std::vector<std::string> lines;
        const int status = readLines(lines, RESET_TIMEOUT_MS);
        if (status == 2)
            return false;
        if (status == 0 || reply.empty()) {
            reply.clear();
            for (const std::string& line : lines)
                reply += line + " ";
            break;
        }
        --m_owed; // the prompt came with STOPPED: nothing is owed
    }
    return identifyDevice(reply);
}

bool ElmScantool::identifyDevice(const std::string& reply)
{
    QRegularExpressionMatch match = bannerMatch(reply);
    if (!match.hasMatch()) {
        OBD_ERROR << "Failed to identify the device. Response: " << ElmTransport::escaped(reply);
        return false;
    }
    m_deviceName = match.captured(1).toStdString();
    m_deviceVersion = match.captured(2).toStdString();
    OBD_DEBUG << "Interface " << m_deviceName << " (" << m_deviceVersion << ")";
    return true;
}

bool ElmScantool::isOBDProsAdapter() const
{
    std::string name(m_deviceName);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return contains(name, "OBDPROS");
}

void ElmScantool::setDelimiter(unsigned char delimiter)
{
    if (m_connection)
        m_connection->setDelimiter(delimiter);
}

void ElmScantool::resetState()
{
    m_initialized = false;
    m_deviceName.clear();
    m_deviceVersion.clear();
    m_protocolName.clear();
    m_protocol = PROTOCOL_UNKNOWN;
}

} // namespace Obd
