#ifndef OBD_ECU_H
#define OBD_ECU_H

#include "oxygensensorlocation.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Obd {

// One control unit found by discovery, keyed by its id: the CAN response
// identifier, or the source address of a non-CAN header (0 without headers).
class Ecu
{
public:
    Ecu();
    Ecu(unsigned int id, unsigned int protocol, const std::string& protocolName);
    virtual ~Ecu();

    unsigned int getId() const;
    unsigned int getProtocol() const;
    std::string getProtocolName() const;

    // Services 1, 2, 6 and 9 only; any other service is ignored.
    void setSupported(unsigned int service, const std::vector<unsigned char>& list);
    void addSupported(unsigned int service, unsigned char number);
    bool isSupported(unsigned int service, unsigned char number) const;
    bool getSupported(unsigned int service, std::vector<unsigned char>& list) const;

    // Service 05 test ids per oxygen sensor location.
    void setSupportedTids(unsigned int sensor, const std::vector<unsigned char>& list);
    void addSupportedTid(unsigned int sensor, unsigned char tid);
    bool getSupportedTids(unsigned int sensor, std::vector<unsigned char>& list) const;
    std::map<unsigned int, std::vector<unsigned char>> getSupportedTids() const;

    void setOxygenSensors(const std::vector<OxygenSensorLocation>& sensors);
    std::vector<OxygenSensorLocation> getOxygenSensors() const;
    // 1 when PID 0x13 is supported, else 2 when PID 0x1D is, else 0.
    unsigned int getOxygenSensorLayout() const;

    void setObdStandard(unsigned int standard, const std::string& text);
    unsigned int getObdStandard() const;
    std::string getObdStandardText() const;

    void setNames(const std::string& shortName, const std::string& longName);
    std::string getShortName() const;
    std::string getLongName() const;

    // "7E8", "011", "18DAF110": 3 digits for 11-bit CAN ids and source
    // addresses, 8 for 29-bit ids.
    std::string getIdText() const;
    static std::string idText(unsigned int id);

private:
    std::vector<unsigned char>* listFor(unsigned int service);
    const std::vector<unsigned char>* listFor(unsigned int service) const;

    unsigned int m_id;
    std::vector<unsigned char> m_pids01;
    std::vector<unsigned char> m_pids02;
    std::map<unsigned int, std::vector<unsigned char>> m_tids05;
    std::vector<unsigned char> m_mids06;
    std::vector<unsigned char> m_infoTypes09;
    unsigned int m_protocol;
    std::string m_protocolName;
    unsigned int m_obdStandard;
    std::string m_obdStandardText;
    std::string m_shortName;
    std::string m_longName;
    std::vector<OxygenSensorLocation> m_oxygenSensors;
};

typedef std::shared_ptr<Ecu> EcuPtr;

} // namespace Obd

#endif
