#ifndef OBD_AUXILIARYINPUTSTATUS_H
#define OBD_AUXILIARYINPUTSTATUS_H

#include "cataloguepid.h"

#include <map>

namespace Obd {

// PID 1E: whether power take-off is active (bit 0 of A).
class AuxiliaryInputStatus : public CataloguePid
{
public:
    struct Status
    {
        bool powerTakeOff = false;
    };

    explicit AuxiliaryInputStatus(unsigned char mode = 1);
    ~AuxiliaryInputStatus() override;

    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // False for an unknown ECU.
    bool isPowerTakeOffActive(const Ecu& ecu) const;
    static std::string statusText(bool powerTakeOff);

private:
    std::map<unsigned int, Status> m_values;
};

} // namespace Obd

#endif
