#ifndef OBD_MONITORTESTRESULT_H
#define OBD_MONITORTESTRESULT_H

#include "imonitortestitem.h"
#include "obdparameter.h"
#include "unitsystem.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Obd {

class Ecu;

// Service 06: the on-board monitor test results of one monitor id (CAN) or
// test id (other protocols), per ECU.
class MonitorTestResult : public ObdParameter
{
public:
    typedef std::vector<std::shared_ptr<IMonitorTestItem>> TestItemData;

    // id: the MID on CAN, the TID on the other protocols.
    explicit MonitorTestResult(unsigned char id);
    ~MonitorTestResult() override;

    void clear() override;
    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    unsigned char getId() const;
    // Applies to the items held and to those decoded later.
    void setUnitSystem(UnitSystem system);
    UnitSystem getUnitSystem() const;

    // The MIDs found for the ECU in ascending order (on non-CAN protocols the
    // TIDs of the lines). Empty and "invalid ECU id " logged for an ECU
    // without results.
    std::vector<unsigned char> getMids(const Ecu& ecu) const;
    // The items of one MID in response order; empty when there are none.
    TestItemData getTestItems(const Ecu& ecu, unsigned char mid) const;
    void getEcuIds(std::vector<unsigned int>& ids) const;

    static std::string getMidName(unsigned char mid);
    static std::string getTidName(unsigned char tid);

private:
    typedef std::map<unsigned char, std::shared_ptr<TestItemData>> MidMap;

    bool parseCan(unsigned int ecuId, const std::vector<unsigned char>& data);
    bool parseLegacy(unsigned int ecuId, const std::vector<unsigned char>& data);
    const MidMap* find(const Ecu& ecu) const;

    unsigned char m_id;
    UnitSystem m_system;
    std::map<unsigned int, MidMap> m_results;
};

} // namespace Obd

#endif
