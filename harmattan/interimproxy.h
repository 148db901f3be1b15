#ifndef HARMATTAN_INTERIMPROXY_H
#define HARMATTAN_INTERIMPROXY_H

#include "iobdproxy.h"

#include <mutex>

namespace Harmattan {

// Stands in for the library's discovering proxy until it is available:
// initialize() only checks that the vehicle answers service 01 PID 00.
class InterimProxy : public Obd::IObdProxy
{
public:
    InterimProxy();
    ~InterimProxy() override;

    bool initialize(Obd::IScantool* scantool) override;
    Obd::IScantool* getScantool() override;
    bool isInitialized() override;
    void reset() override;
    void getEcus(std::vector<Obd::EcuPtr>& list) override;
    Obd::EcuPtr getFirstEcu() override;
    Obd::EcuPtr getEcu(unsigned int id) override;
    bool sendCommand(const std::vector<unsigned char>& command,
                     std::vector<unsigned char>& response, unsigned int timeoutMs) override;
    bool sendObdCommand(const std::string& command, std::string& response,
                        unsigned int timeoutMs) override;

private:
    std::recursive_mutex m_mutex;
    Obd::IScantool* m_scantool;
    bool m_initialized;
};

} // namespace Harmattan

#endif
