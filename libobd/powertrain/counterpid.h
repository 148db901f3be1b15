#ifndef OBD_COUNTERPID_H
#define OBD_COUNTERPID_H

#include "cataloguepid.h"

#include <map>

namespace Obd {

// A whole-number counter (run time, warm-ups, distances): no formatter, so
// not measurable; its text is the count, converted for the unit system and
// truncated to a whole number.
class CounterPid : public CataloguePid
{
public:
    ~CounterPid() override;

    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // The raw count (metric); 0 when the ECU has none.
    unsigned int getValue(const Ecu& ecu) const;

protected:
    CounterPid(unsigned char pid, unsigned char mode);

private:
    std::map<unsigned int, unsigned int> m_values;
};

} // namespace Obd

#endif
