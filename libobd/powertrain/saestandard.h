#ifndef OBD_SAESTANDARD_H
#define OBD_SAESTANDARD_H

#include "cataloguepid.h"

#include <map>

namespace Obd {

// PID 1C: the OBD standard the vehicle is certified to, code 0..13.
class SaeStandard : public CataloguePid
{
public:
    explicit SaeStandard(unsigned char mode = 1);
    ~SaeStandard() override;

    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // 0 for an unknown ECU.
    unsigned int getStandard(const Ecu& ecu) const;
    // Codes outside 1..13 read "Invalid OBD standard".
    static std::string standardText(unsigned int code);

private:
    std::map<unsigned int, unsigned int> m_values;
};

} // namespace Obd

#endif
