#ifndef OBD_SAESTANDARD_H
#define OBD_SAESTANDARD_H

#include "enumeratedpid.h"

namespace Obd {

// PID 1C: the OBD standard the vehicle is certified to, code 0..13.
class SaeStandard : public EnumeratedPid
{
public:
    explicit SaeStandard(unsigned char mode = 1);
    ~SaeStandard() override;

    // 0 for an unknown ECU.
    unsigned int getStandard(const Ecu& ecu) const;
    // Codes outside 1..13 read "Invalid OBD standard".
    static std::string standardText(unsigned int code);

protected:
    unsigned int codeOf(unsigned char byte) const override;
    std::string textOf(unsigned int code) const override { return standardText(code); }
};

} // namespace Obd

#endif
