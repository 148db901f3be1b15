#ifndef OBD_SECONDARYAIRSTATUS_H
#define OBD_SECONDARYAIRSTATUS_H

#include "cataloguepid.h"

#include <map>

namespace Obd {

// PID 12: where the secondary air is commanded, as an index into the
// status texts.
class SecondaryAirStatus : public CataloguePid
{
public:
    struct AirStatus
    {
        unsigned int status = 0;
    };

    explicit SecondaryAirStatus(unsigned char mode = 1);
    ~SecondaryAirStatus() override;

    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // 0 for an unknown ECU.
    unsigned int getStatus(const Ecu& ecu) const;
    // "NA" for any index above 3.
    static std::string statusText(unsigned int index);

private:
    std::map<unsigned int, AirStatus> m_values;
};

} // namespace Obd

#endif
