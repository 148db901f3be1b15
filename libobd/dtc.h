#ifndef OBD_DTC_H
#define OBD_DTC_H

#include <string>

namespace Obd {

// One diagnostic trouble code: the code text ("P0301"), its description
// and the category text.
class Dtc
{
public:
    Dtc();
    explicit Dtc(const std::string& code);
    virtual ~Dtc();

    std::string getCode() const;
    void setCode(const std::string& code);
    std::string getDescription() const;
    void setDescription(const std::string& description);
    std::string getCategory() const;
    void setCategory(const std::string& category);
    // The ECU that reported the code: short name and address; empty and 0
    // until set.
    std::string getEcuName() const;
    unsigned int getEcuId() const;
    void setEcu(const std::string& shortName, unsigned int id);

    // By the first character: "Powertrain", "Body", "Chassis", "Network",
    // else (also for an empty code) "Undefined".
    static std::string categoryOf(const std::string& code);
    // A pair with (A & 0x0F) = 0 and B = 0 holds no code; the upper nibble
    // of A is not looked at.
    static bool isEmptyPair(unsigned char a, unsigned char b);
    // The code text of two raw bytes, e.g. 01 33 -> "P0133"; empty for an
    // empty pair.
    static std::string codeFromBytes(unsigned char a, unsigned char b);
    // P1xxx, P3000-P33FF, B1xxx-B2xxx, C1xxx-C2xxx and U1xxx-U2xxx: the
    // ranges left to the vehicle makers. Upper case, five characters only.
    static bool isManufacturerSpecific(const std::string& code);
    // A record for a code: description from the database, category text.
    static Dtc describe(const std::string& code);

private:
    std::string m_code;
    std::string m_description;
    std::string m_category;
    std::string m_ecuName;
    unsigned int m_ecuId = 0;
};

} // namespace Obd

#endif
