#ifndef TEST_FAKEPROXY_H
#define TEST_FAKEPROXY_H

#include "iobdproxy.h"

#include <mutex>
#include <vector>

// A proxy without discovery: lends a scan tool (usually a FakeScantool) to
// the transporter and hands out a scripted ECU list.
// initialize() only stores the scan tool and returns the configured result;
// the pass-through exchanges go to the scan tool (false when there is none).
class FakeProxy : public Obd::IObdProxy
{
public:
    explicit FakeProxy(Obd::IScantool* scantool = nullptr);
    ~FakeProxy() override;

    void setScantool(Obd::IScantool* scantool);
    void setInitializeResult(bool result);
    // Kept in ascending id order, like the real proxy's list.
    void addEcu(const Obd::EcuPtr& ecu);
    // Shortcut: a new Ecu with that id and the scan tool's protocol (or 5).
    Obd::EcuPtr addEcu(unsigned int id);
    int getScantoolCalls() const;

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
    bool m_initializeResult;
    std::vector<Obd::EcuPtr> m_ecus;
    int m_getScantoolCalls;
};

#endif
