#ifndef OBD_LIVEREADER_H
#define OBD_LIVEREADER_H

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Obd {

class IObdProxy;
class ObdParameter;

// Reads live service 01 PIDs with as few and as short exchanges as the
// vehicle allows: up to six PIDs per request on CAN, the number of answers
// to expect appended when discovery knows it, adaptive timing on and the
// adapter's time-out tightened once the ECUs' answer times are measured.
// Whatever the adapter or an ECU gets wrong is remembered and not asked
// again. Plain mode asks one PID per request with the adapter's timing.
class LiveReader
{
public:
    typedef std::pair<unsigned char, ObdParameter*> Item;

    explicit LiveReader(IObdProxy* proxy, bool tuned = true);

    // One reading of every item; true per item whose exchange succeeded.
    std::vector<bool> read(const std::vector<Item>& items);

    unsigned int exchanges() const { return m_exchanges; }
    bool singleOnly(unsigned int ecuId) const { return m_singleOnly.count(ecuId) > 0; }
    bool expectsCount() const { return !m_countRejected; }
    // The AT ST argument sent (4 ms units), 0 before any.
    unsigned int timeoutSetting() const { return m_timeoutSetting; }

private:
    bool exchange(const std::string& command, unsigned int expected, std::string& text);
    bool sendAt(const std::string& command);
    void measured(double ms);
    unsigned int expectedAnswers(const std::vector<unsigned char>& pids) const;
    void failed(ObdParameter* parameter) const;
    bool readSingle(const Item& item);
    // False when nothing came back at all (items left unread, no ECU blamed).
    bool readGroup(const std::vector<Item>& group, std::vector<Item>& missed);

    IObdProxy* m_proxy;
    bool m_tuned;
    bool m_adaptiveSent = false;
    bool m_adaptive = false;
    bool m_timingBlamed = false;
    bool m_countRejected = false;
    bool m_silent = false;
    unsigned int m_exchanges = 0;
    unsigned int m_timeoutSetting = 0;
    unsigned int m_protocol = 0;
    std::vector<double> m_times;
    std::set<unsigned int> m_singleOnly;
};

} // namespace Obd

#endif
