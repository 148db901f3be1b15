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
// longer words win. Code 1 is kept free.
struct ErrorWord
{
    const char* word;
    int code;
};
const ErrorWord ERROR_WORDS[] = {
    { "NODATA",          ElmScantool::ERROR_NO_DATA },
    { "UNABLETOCONNECT", ElmScantool::ERROR_UNABLE_TO_CONNECT },
    { "BUFFERFULL",      ElmScantool::ERROR_BUFFER_FULL },
    { "BUSBUSY",         ElmScantool::ERROR_BUS_BUSY },
    { "BUSERROR",        ElmScantool::ERROR_BUS_ERROR },
    { "CANERROR",        ElmScantool::ERROR_CAN_ERROR },
    { "DATAERROR",       ElmScantool::ERROR_DATA_ERROR },
    { "FBERROR",         ElmScantool::ERROR_FB_ERROR },
    { "LVRESET",         ElmScantool::ERROR_LV_RESET },
    { "RXERROR",         ElmScantool::ERROR_RX_ERROR },
    { "STOPPED",         ElmScantool::ERROR_STOPPED },
    { "ERR",             ElmScantool::ERROR_ERR },
};

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
    for (const ErrorWord& error : ERROR_WORDS) {
        if (text.find(error.word) != std::string::npos)
            return error.code;
    }
    return ERROR_NONE;
}

void ElmScantool::setConnection(IConnection* connection)
{
    m_connection = connection;
    setDelimiter(PROMPT);
}

bool ElmScantool::checkDevice()
{
    drain(0);
    if (!send("ATI"))
        return false;
    if (contains(readJoined(200, 50), ELM_MARKER))
        return true;
    if (!send("ATI"))
        return false;
    return contains(readJoined(200, 50), ELM_MARKER);
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
    drain(250);
    const std::string command("ATZ");
    if (!send(command))
        return false;
    std::string reply = readJoined(1250, 250);
    if (reply == command) {
        // Only the echo came: the banner follows later.
        std::string banner;
        read(banner, 1000);
        reply = banner;
    } else {
        cutFirst(reply, command);
    }
    return identifyDevice(reply);
}

void ElmScantool::sendReset()
{
    send("ATZ");
}

bool ElmScantool::identify()
{
    const std::string command("ATI");
    if (!send(command))
        return false;
    std::string reply = readJoined(250, 50);
    cutFirst(reply, command);
    return identifyDevice(reply);
}

bool ElmScantool::readDescription()
{
    const std::string command("AT@1");
    if (!send(command))
        return false;
    std::string reply = readJoined(250, 50);
    cutFirst(reply, command);
    m_deviceDescription = trimmed(reply);
    return true;
}

bool ElmScantool::initialize(unsigned int protocol)
{
    m_requestedProtocol = protocol;
    drain(50);
    setDelimiter(PROMPT);
    drain(50);
    if (!setting("ATE0", "Failed to set echo off. Response: "))
        return m_initialized;
    if (!setting("ATL0", "Failed to set linefeed off. Response: "))
        return m_initialized;
    if (!setTryProtocol(protocol))
        return m_initialized;
    m_initialized = true;
    return true;
}

bool ElmScantool::identifyProtocol()
{
    if (!send("ATDPN"))
        return false;
    std::string number;
    read(number, 500);
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

    if (!send("ATDP"))
        return false;
    std::string name;
    read(name, 500);
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
    // A failed exchange must not leave an earlier reply for the caller to decode.
    response.clear();
    if (!sendBytes(command) || !readResponse(response, timeoutMs))
        return false;
    response.erase(std::remove(response.begin(), response.end(), ' '), response.end());
    return true;
}

bool ElmScantool::sendObdCommand(const std::string& command, std::string& response,
                                 unsigned int timeoutMs)
{
    response.clear();
    if (!send(command))
        return false;
    return read(response, timeoutMs);
}

bool ElmScantool::sendBytes(const std::vector<unsigned char>& command)
{
    if (ElmTransport::send(m_connection, command) == 0)
        return true;
    resetState();
    return false;
}

bool ElmScantool::send(const std::string& command)
{
    return sendBytes(std::vector<unsigned char>(command.begin(), command.end()));
}

bool ElmScantool::readResponse(std::vector<unsigned char>& reply, unsigned int timeoutMs)
{
    int status = ElmTransport::receive(m_connection, reply, timeoutMs);
    if (status == 2)
        resetState();
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
    std::string first;
    std::string second;
    read(first, firstMs);
    read(second, secondMs);
    return first + second;
}

void ElmScantool::drain(unsigned int timeoutMs)
{
    std::string ignored;
    read(ignored, timeoutMs);
}

bool ElmScantool::setting(const std::string& command, const char* failureText, bool appendReply)
{
    if (!send(command))
        return false;
    std::string reply;
    read(reply, 500);
    if (!contains(reply, ACK)) {
        if (appendReply)
            OBD_ERROR << failureText << reply;
        else
            OBD_ERROR << failureText;
        return false;
    }
    return true;
}

bool ElmScantool::identifyDevice(const std::string& reply)
{
    // "ELM327 v1.5": a name ending in digits, then a version such as v1.5 or v1.4b.
    static const QString PATTERN = QStringLiteral("\\b(\\S+[0-9]{1,3})\\s?(\\S\\d+\\.\\d+\\S?)");
    QRegularExpression expression(PATTERN);
    QRegularExpressionMatch match = expression.match(QString::fromStdString(reply));
    if (!match.hasMatch()) {
        OBD_ERROR << "Failed to identify the device. Response: " << reply;
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
