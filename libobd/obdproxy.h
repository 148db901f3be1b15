#ifndef OBD_OBDPROXY_H
#define OBD_OBDPROXY_H

#include "cmutex.h"
#include "iobdproxy.h"

#include <string>
#include <vector>

namespace Obd {

class ObdParameter;

// Takes over an initialised scan tool and discovers the vehicle: its ECUs,
// protocol, supported PIDs, monitor ids, info types, oxygen sensors and
// their tests, OBD standard and names.
class ObdProxy : public IObdProxy
{
public:
    ObdProxy();
    ~ObdProxy() override;

    bool initialize(IScantool* scantool) override;
    IScantool* getScantool() override;
    bool isInitialized() override;
    void reset() override;
    void getEcus(std::vector<EcuPtr>& list) override;
    EcuPtr getFirstEcu() override;
    EcuPtr getEcu(unsigned int id) override;
    bool sendCommand(const std::vector<unsigned char>& command,
                     std::vector<unsigned char>& response, unsigned int timeoutMs) override;
    bool sendObdCommand(const std::string& command, std::string& response,
                        unsigned int timeoutMs) override;

private:
    bool findEcus();
    // Services 1, 2 and 6; false when the first range failed.
    bool findSupportedPids(unsigned char mode);
    bool findSupportedInfoTypes();
    bool findObdStandard();
    void findEcuNames();
    void findOxygenSensors();
    bool execute(ObdParameter& parameter);
    void logSupported(const std::string& title, unsigned int ecuId,
                      const std::vector<unsigned char>& list);

    IScantool* m_scantool;
    std::vector<EcuPtr> m_ecus;
    CMutex m_mutex;
};

} // namespace Obd

#endif
