#include "livereader.h"
#include "iobdproxy.h"
#include "iscantool.h"
#include "multipidrequest.h"
#include "obdparameter.h"
#include "obdtransporter.h"
#include "trlog.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace Obd {

namespace {

const unsigned int EXCHANGE_TIMEOUT_MS = 1200;
// Answer times measured before the adapter's time-out is tightened.
const size_t MEASUREMENTS = 8;
// The adapter's default time-out, 0x32 x 4 ms: never raised above it.
const unsigned int DEFAULT_TIMEOUT_SETTING = 0x32;

std::string hexByte(unsigned int value)
{
    static const char digits[] = "0123456789ABCDEF";
    return std::string(1, digits[(value >> 4) & 0xF]) + digits[value & 0xF];
}

} // namespace

LiveReader::LiveReader(IObdProxy* proxy, bool tuned)
    : m_proxy(proxy)
    , m_tuned(tuned)
{
}

bool LiveReader::sendAt(const std::string& command)
{
    std::string response;
    const bool ok = m_proxy->sendObdCommand(command, response, EXCHANGE_TIMEOUT_MS)
        && response.find("OK") != std::string::npos;
    OBD_DEBUG << command << (ok ? " accepted" : " refused by the adapter");
    return ok;
}

// The slowest answer plus half again and a margin, so that a late ECU is
// still heard; adaptive timing shortens the wait further where it can.
void LiveReader::measured(double ms)
{
    if (m_times.size() >= MEASUREMENTS)
        return;
    m_times.push_back(ms);
    if (m_times.size() < MEASUREMENTS)
        return;
    const double slowest = *std::max_element(m_times.begin(), m_times.end());
    const unsigned int setting = std::min(
        DEFAULT_TIMEOUT_SETTING, static_cast<unsigned int>(std::ceil((slowest * 1.5 + 16) / 4)));
    if (setting < DEFAULT_TIMEOUT_SETTING && sendAt("ATST" + hexByte(setting)))
        m_timeoutSetting = setting;
    OBD_DEBUG << "Slowest answer " << slowest << " ms; adapter time-out wanted " << setting * 4 << " ms";
}

bool LiveReader::exchange(const std::string& command, unsigned int expected, std::string& text)
{
    std::vector<unsigned char> response;
    auto send = [&](const std::string& line) {
        ++m_exchanges;
        m_proxy->sendCommand(std::vector<unsigned char>(line.begin(), line.end()), response,
                             EXCHANGE_TIMEOUT_MS);
        return !response.empty();
    };
    m_timingBlamed = false;
    m_silent = false;
    if (expected > 0 && expected <= 0xF && !m_countRejected) {
        const auto start = std::chrono::steady_clock::now();
        if (send(command + hexByte(expected).substr(1))) {
            measured(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
            text.assign(response.begin(), response.end());
            return true;
        }
        IScantool* scantool = m_proxy->getScantool();
        // An adapter that said nothing at all, or a link gone, blames
        // neither the count nor the timing: asking again would only wait again.
        const ScantoolError::Status status = scantool ? scantool->lastError().status : ScantoolError::SE_NONE;
        if (status == ScantoolError::SE_TIMEOUT || status == ScantoolError::SE_NOT_CONNECTED) {
            m_silent = true;
            text.clear();
            return false;
        }
        // "?" refuses the count itself. Anything else is first taken for an
        // answer that came after adaptive timing stopped listening; once that
        // is off, for the count.
        const bool refused = scantool && scantool->lastError().word == "?";
        if (!refused && m_adaptive) {
            m_adaptive = false;
            m_timingBlamed = true;
            sendAt("ATAT0");
        }
        if ((send(command) || refused) && !m_timingBlamed) {
            OBD_INFO << "The adapter refuses the number of answers to expect";
            m_countRejected = true;
        }
    } else if (!send(command)) {
        IScantool* scantool = m_proxy->getScantool();
        const ScantoolError::Status status = scantool ? scantool->lastError().status : ScantoolError::SE_NONE;
        m_silent = status == ScantoolError::SE_TIMEOUT || status == ScantoolError::SE_NOT_CONNECTED;
    }
    text.assign(response.begin(), response.end());
    return !text.empty();
}

unsigned int LiveReader::expectedAnswers(const std::vector<unsigned char>& pids) const
{
    std::vector<EcuPtr> ecus;
    m_proxy->getEcus(ecus);
    unsigned int count = 0;
    for (const EcuPtr& ecu : ecus)
        count += std::any_of(pids.begin(), pids.end(),
                             [&](unsigned char pid) { return ecu->isSupported(1, pid); }) ? 1 : 0;
    return count;
}

// Why nothing came, for the screens: the adapter's word or the silence.
void LiveReader::failed(ObdParameter* parameter) const
{
    IScantool* scantool = m_proxy->getScantool();
    const ScantoolError error = scantool ? scantool->lastError() : ScantoolError();
    if (error.status == ScantoolError::SE_ERROR_WORD)
        parameter->setExchangeStatus(READ_ADAPTER_ERROR, error.text());
    else
        parameter->setExchangeStatus(READ_TIMEOUT, error.status == ScantoolError::SE_NOT_CONNECTED
                                         ? "the link to the adapter was lost" : "no answer in time");
}

bool LiveReader::readSingle(const Item& item)
{
    ObdTransporter transporter;
    IScantool* scantool = m_proxy->getScantool();
    const unsigned int expected = expectedAnswers({ item.first });
    // Nothing to add to the request: the plain exchange.
    if (!m_tuned || !scantool->isHeadersOn() || expected == 0 || m_countRejected) {
        ++m_exchanges;
        return transporter.execute(m_proxy, item.second) == ER_OK;
    }
    std::vector<unsigned char> request;
    item.second->getRequest(m_protocol, request);
    std::string text;
    item.second->beginExchange();
    if (!exchange(ObdTransporter::commandText(request), expected, text)) {
        failed(item.second);
        return false;
    }
    return isCanProtocol(m_protocol) ? transporter.parseCanResponse(m_protocol, text, item.second)
                                     : transporter.parseNonCanResponse(m_protocol, text, item.second);
}

bool LiveReader::readGroup(const std::vector<Item>& group, std::vector<Item>& missed)
{
    MultiPidRequest request(group);
    for (const Item& item : group)
        item.second->beginExchange();
    std::vector<unsigned char> bytes;
    request.getRequest(m_protocol, bytes);
    const std::vector<unsigned char> pids(bytes.begin() + 1, bytes.end());
    std::string text;
    if (exchange(ObdTransporter::commandText(bytes), expectedAnswers(pids), text)) {
        ObdTransporter().parseCanResponse(m_protocol, text, &request);
    } else if (m_timingBlamed) {
        missed = group; // the ECUs are not to blame: asked alone this once
        return true;
    } else if (m_silent) {
        for (const Item& item : group)
            failed(item.second);
        return false;
    }

    std::vector<EcuPtr> ecus;
    m_proxy->getEcus(ecus);
    std::set<unsigned char> incomplete;
    for (const EcuPtr& ecu : ecus) {
        const std::set<unsigned char> answered = request.answered(ecu->getId());
        bool whole = !request.malformed(ecu->getId());
        for (unsigned char pid : pids) {
            if (ecu->isSupported(1, pid) && !answered.count(pid)) {
                whole = false;
                incomplete.insert(pid);
            }
        }
        if (!whole && m_singleOnly.insert(ecu->getId()).second)
            OBD_INFO << "ECU " << ecu->getId() << " answered a multi-PID request wrongly: one PID per request from now on";
    }
    for (const Item& item : group) {
        if (incomplete.count(item.first))
            missed.push_back(item);
    }
    return true;
}

std::vector<bool> LiveReader::read(const std::vector<Item>& items)
{
    std::vector<bool> result(items.size(), false);
    IScantool* scantool = m_proxy ? m_proxy->getScantool() : nullptr;
    if (!scantool || !scantool->isInitialized())
        return result;
    m_protocol = scantool->getProtocol();
    std::vector<EcuPtr> ecus;
    m_proxy->getEcus(ecus);
    if (m_tuned && !m_adaptiveSent && !ecus.empty()) {
        m_adaptiveSent = true;
        m_adaptive = sendAt("ATAT1");
        // Every ECU answers the first range of supported PIDs: one timed
        // answer from each, so that the time-out is never tuned below the
        // slowest of them.
        std::string text;
        exchange("0100", static_cast<unsigned int>(ecus.size()), text);
    }

    const bool canShare = m_tuned && isCanProtocol(m_protocol) && scantool->isHeadersOn();
    std::vector<size_t> shared;
    std::vector<size_t> single;
    for (size_t i = 0; i < items.size(); ++i) {
        const unsigned char pid = items[i].first;
        bool ok = canShare && MultiPidRequest::canShare(pid) && expectedAnswers({ pid }) > 0;
        for (const EcuPtr& ecu : ecus)
            ok = ok && !(singleOnly(ecu->getId()) && ecu->isSupported(1, pid));
        (ok ? shared : single).push_back(i);
    }
    // A lone PID goes as it always did.
    if (shared.size() == 1)
        single.insert(single.begin(), shared.front());
    if (shared.size() > 1) {
        for (size_t from = 0; from < shared.size(); from += MultiPidRequest::MAX_PIDS) {
            std::vector<Item> group;
            for (size_t i = from; i < std::min(shared.size(), from + MultiPidRequest::MAX_PIDS); ++i)
                group.push_back(items[shared[i]]);
            std::vector<Item> missed;
            if (!readGroup(group, missed))
                continue; // nothing came: each item stays unread
            for (size_t i = from; i < std::min(shared.size(), from + MultiPidRequest::MAX_PIDS); ++i) {
                const bool lost = std::any_of(missed.begin(), missed.end(),
                                              [&](const Item& m) { return m.first == items[shared[i]].first; });
                if (lost)
                    single.push_back(shared[i]);
                else
                    result[shared[i]] = true;
            }
        }
    }
    for (size_t i : single)
        result[i] = readSingle(items[i]);
    return result;
}

} // namespace Obd
