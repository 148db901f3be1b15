#include "fakeproxy.h"
#include "iscantool.h"

#include <algorithm>

using namespace Obd;

FakeProxy::FakeProxy(IScantool* scantool)
    : m_scantool(scantool)
{
}

EcuPtr FakeProxy::addEcu(unsigned int id)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    EcuPtr ecu = std::make_shared<Ecu>(id, m_scantool ? m_scantool->getProtocol() : PROTOCOL_UNKNOWN,
                                       m_scantool ? m_scantool->getProtocolName() : std::string());
    m_ecus.push_back(ecu);
    std::stable_sort(m_ecus.begin(), m_ecus.end(),
                     [](const EcuPtr& a, const EcuPtr& b) { return a->getId() < b->getId(); });
    return ecu;
}

bool FakeProxy::initialize(IScantool* scantool)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_scantool = scantool;
    return true;
}

IScantool* FakeProxy::getScantool()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_getScantoolCalls;
    return m_scantool;
}

bool FakeProxy::isInitialized()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_scantool && m_scantool->isInitialized();
}

void FakeProxy::reset()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_scantool = nullptr;
    m_ecus.clear();
}

void FakeProxy::getEcus(std::vector<EcuPtr>& list)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    list = m_ecus;
}

EcuPtr FakeProxy::getFirstEcu()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_ecus.empty() ? EcuPtr() : m_ecus.front();
}

EcuPtr FakeProxy::getEcu(unsigned int id)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const EcuPtr& ecu : m_ecus)
        if (ecu->getId() == id)
            return ecu;
    return EcuPtr();
}

bool FakeProxy::sendCommand(const std::vector<unsigned char>& command,
                            std::vector<unsigned char>& response, unsigned int timeoutMs)
{
    IScantool* scantool = getScantool();
    return scantool && scantool->sendCommand(command, response, timeoutMs);
}

bool FakeProxy::sendObdCommand(const std::string& command, std::string& response,
                               unsigned int timeoutMs)
{
    IScantool* scantool = getScantool();
    return scantool && scantool->sendObdCommand(command, response, timeoutMs);
}
