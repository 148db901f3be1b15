#ifndef OBD_IOBDPROXY_H
#define OBD_IOBDPROXY_H

#include "ecu.h"

#include <string>
#include <vector>

namespace Obd {

class IScantool;

// The library's facade: owns discovery's ECU list and lends the scan tool
// to the transporter.
class IObdProxy
{
public:
    virtual ~IObdProxy() {}
    virtual bool initialize(IScantool* scantool) = 0;
    virtual IScantool* getScantool() = 0;
    virtual bool isInitialized() = 0;
    virtual void reset() = 0;
    virtual void getEcus(std::vector<EcuPtr>& list) = 0;
    virtual EcuPtr getFirstEcu() = 0;
    virtual EcuPtr getEcu(unsigned int id) = 0;
    virtual bool sendCommand(const std::vector<unsigned char>& command,
                             std::vector<unsigned char>& response, unsigned int timeoutMs) = 0;
    virtual bool sendObdCommand(const std::string& command, std::string& response,
                                unsigned int timeoutMs) = 0;
};

} // namespace Obd

#endif
