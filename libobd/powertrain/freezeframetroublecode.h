#ifndef OBD_FREEZEFRAMETROUBLECODE_H
#define OBD_FREEZEFRAMETROUBLECODE_H

#include "cataloguepid.h"

#include <map>
#include <utility>

namespace Obd {

// PID 02 of service 02: the trouble code that stored the freeze frame,
// kept per ECU as its two raw bytes.
class FreezeFrameTroubleCode : public CataloguePid
{
public:
    explicit FreezeFrameTroubleCode(unsigned char mode = 2);
    ~FreezeFrameTroubleCode() override;

    // The code text; nothing without a code.
    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // Each yields the empty text (and a warning) when the ECU has no code.
    std::string getCode(const Ecu& ecu) const;
    std::string getCategory(const Ecu& ecu) const;
    std::string getDescription(const Ecu& ecu) const;

private:
    bool findCode(const Ecu& ecu, std::string& code) const;

    std::map<unsigned int, std::pair<unsigned char, unsigned char>> m_codes;
};

} // namespace Obd

#endif
