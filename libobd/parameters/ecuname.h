#ifndef OBD_ECUNAME_H
#define OBD_ECUNAME_H

#include "obdparameter.h"

#include <map>
#include <string>
#include <vector>

namespace Obd {

class Ecu;

// Service 09 InfoType 0A: the ECU's abbreviation and name, 20 characters
// "ABBR-Name" as SAE J1979 lays them out.
class EcuName : public ObdParameter
{
public:
    static constexpr unsigned char INFO_TYPE = 0x0A;

    struct Name
    {
        std::string abbreviation; // e.g. "ECM"; empty without a delimiter
        std::string text;         // the ECU's own name, e.g. "EngineControl"
    };

    EcuName();
    ~EcuName() override;

    void clear() override;
    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    bool hasName(const Ecu& ecu) const;
    // Each logs "invalid ECU id " and yields an empty text for an ECU
    // without a result.
    std::string getAbbreviation(const Ecu& ecu) const;
    std::string getText(const Ecu& ecu) const;
    // The module name of the abbreviation; empty for one not in the table.
    std::string getFullName(const Ecu& ecu) const;
    // The names the ECU list shows: the abbreviation, and the module name,
    // or the ECU's own text when the abbreviation is not in the table.
    std::string getShortName(const Ecu& ecu) const;
    std::string getLongName(const Ecu& ecu) const;
    void getEcuIds(std::vector<unsigned int>& ids) const;

    // The module name of an abbreviation; empty when it is not in the table.
    static std::string fullNameOf(const std::string& abbreviation);

private:
    bool decodeText(unsigned int ecuId, const std::vector<unsigned char>& text);
    const Name* find(const Ecu& ecu) const;

    std::map<unsigned int, Name> m_names;
};

} // namespace Obd

#endif
