#include "interimproxy.h"

#include "iscantool.h"
#include "trlog.h"

#include <algorithm>

namespace Harmattan {

namespace {

// Generous: the adapter's protocol search runs on the first request.
const unsigned int PROBE_TIMEOUT_MS = 10000;

} // namespace

InterimProxy::InterimProxy()
    : m_scantool(nullptr)
    , m_initialized(false)
{
}

InterimProxy::~InterimProxy()
{
}

bool InterimProxy::initialize(Obd::IScantool* scantool)
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    m_scantool = scantool;
    m_initialized = false;
    if (!m_scantool)
        return false;
    std::string response;
    if (!m_scantool->sendObdCommand("0100", response, PROBE_TIMEOUT_MS))
        return false;
    response.erase(std::remove(response.begin(), response.end(), ' '), response.end());
    m_initialized = response.find("4100") != std::string::npos;
    OBD_DEBUG << "Probe answer: " << response;
    return m_initialized;
}

Obd::IScantool* InterimProxy::getScantool()
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    return m_scantool;
}

bool InterimProxy::isInitialized()
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    return m_initialized && m_scantool && m_scantool->isInitialized();
}

void InterimProxy::reset()
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    m_scantool = nullptr;
    m_initialized = false;
}

void InterimProxy::getEcus(std::vector<Obd::EcuPtr>& list)
{
    list.clear();
}

Obd::EcuPtr InterimProxy::getFirstEcu()
{
    return Obd::EcuPtr();
}

Obd::EcuPtr InterimProxy::getEcu(unsigned int)
{
    return Obd::EcuPtr();
}

bool InterimProxy::sendCommand(const std::vector<unsigned char>& command,
                               std::vector<unsigned char>& response, unsigned int timeoutMs)
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    return m_scantool && m_scantool->sendCommand(command, response, timeoutMs);
}

bool InterimProxy::sendObdCommand(const std::string& command, std::string& response,
                                  unsigned int timeoutMs)
{
    std::lock_guard<std::recursive_mutex> lock(m_mutex);
    return m_scantool && m_scantool->sendObdCommand(command, response, timeoutMs);
}

} // namespace Harmattan
