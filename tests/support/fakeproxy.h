#ifndef TEST_FAKEPROXY_H
#define TEST_FAKEPROXY_H

#include "iobdproxy.h"

#include <atomic>
#include <mutex>
#include <vector>

// A proxy without discovery: lends a scan tool (usually a FakeScantool) to
// the transporter and hands out the ECUs it was given, in ascending id order.
class FakeProxy : public Obd::IObdProxy
{
public:
    explicit FakeProxy(Obd::IScantool* scantool = nullptr);

    // A new Ecu with that id and the scan tool's protocol.
    Obd::EcuPtr addEcu(unsigned int id);
    // How often the scan tool was asked for: once per exchange of a transporter.
    int getScantoolCalls() const { return m_getScantoolCalls; }

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
    mutable std::mutex m_mutex;
    Obd::IScantool* m_scantool;
    std::vector<Obd::EcuPtr> m_ecus;
    std::atomic<int> m_getScantoolCalls{0};
};

#endif
