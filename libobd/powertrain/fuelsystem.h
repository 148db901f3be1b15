#ifndef OBD_FUELSYSTEM_H
#define OBD_FUELSYSTEM_H

#include "cataloguepid.h"

#include <map>

namespace Obd {

// PID 03: the loop status of fuel systems 1 and 2, as indices into the
// status texts.
class FuelSystem : public CataloguePid
{
public:
    struct Data
    {
        unsigned int system1 = NOT_REPORTED;
        unsigned int system2 = NOT_REPORTED;
    };

    // Start value of both indices; also what an unknown ECU yields.
    static constexpr unsigned int NOT_REPORTED = 5;

    explicit FuelSystem(unsigned char mode = 1);
    ~FuelSystem() override;

    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    Data getData(const Ecu& ecu) const;
    // "NA" for any index above 4.
    static std::string statusText(unsigned int index);

private:
    static bool toIndex(unsigned char byte, unsigned int& index);

    std::map<unsigned int, Data> m_values;
};

} // namespace Obd

#endif
