#ifndef OBD_OXYGENSENSORTESTRESULT_H
#define OBD_OXYGENSENSORTESTRESULT_H

#include "obdparameter.h"
#include "oxygensensorlocation.h"
#include "oxygensensortestitem.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Obd {

class Ecu;

// Service 05 (non-CAN): the oxygen sensor test results of one TID, per ECU
// and sensor.
class OxygenSensorTestResult : public ObdParameter
{
public:
    typedef std::map<OxygenSensorLocation, std::shared_ptr<OxygenSensorTestItem>> SensorMap;

    explicit OxygenSensorTestResult(unsigned char tid);
    ~OxygenSensorTestResult() override;

    void clear() override;
    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    unsigned char getTid() const;
    // The sensors tested, in location order. Empty and "invalid ECU id "
    // logged for an ECU without results.
    std::vector<OxygenSensorLocation> getSensors(const Ecu& ecu) const;
    // Null for an ECU without results (logged) or a sensor not tested.
    std::shared_ptr<OxygenSensorTestItem> getItem(const Ecu& ecu,
                                                  OxygenSensorLocation location) const;
    void getEcuIds(std::vector<unsigned int>& ids) const;

    // Service 05 TID names; 0B and 0C differ from service 06 on purpose.
    static std::string getTidName(unsigned char tid);

private:
    const SensorMap* find(const Ecu& ecu) const;

    unsigned char m_tid;
    std::map<unsigned int, SensorMap> m_results;
};

} // namespace Obd

#endif
