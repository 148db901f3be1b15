#ifndef OBD_FUELTYPE_H
#define OBD_FUELTYPE_H

#include "cataloguepid.h"

#include <map>

namespace Obd {

// PID 51: the fuel the vehicle runs on, one SAE J1979 code per byte.
class FuelType : public CataloguePid
{
public:
    explicit FuelType(unsigned char mode = 1);
    ~FuelType() override;

    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // The text of a fuel-type code; codes the standard reserves say so.
    static std::string typeText(unsigned int code);

private:
    std::map<unsigned int, unsigned int> m_values;
};

} // namespace Obd

#endif
