#ifndef OBD_ENUMERATEDPID_H
#define OBD_ENUMERATEDPID_H

#include "cataloguepid.h"

#include <map>

namespace Obd {

// A one-byte PID whose value is a code with a text (OBD standard, fuel
// type): keeps the code per ECU; the subclass names the codes.
class EnumeratedPid : public CataloguePid
{
public:
    ~EnumeratedPid() override;

    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override;

protected:
    EnumeratedPid(unsigned char pid, unsigned char mode);

    // The code stored for a received byte.
    virtual unsigned int codeOf(unsigned char byte) const { return byte; }
    virtual std::string textOf(unsigned int code) const = 0;
    // 0 for an unknown ECU.
    unsigned int code(const Ecu& ecu) const;

private:
    std::map<unsigned int, unsigned int> m_values;
};

} // namespace Obd

#endif
