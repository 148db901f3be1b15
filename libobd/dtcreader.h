#ifndef OBD_DTCREADER_H
#define OBD_DTCREADER_H

#include <map>
#include <string>
#include <vector>

namespace Obd {

struct DtcRow
{
    const char* code;
    const char* description;
};

// The compiled-in table: returns the first row and writes the row count.
const DtcRow* dtcTable(unsigned int& count);

// Offline trouble-code database, built once on first use.
class DtcReader
{
public:
    static DtcReader& instance();

    DtcReader();
    virtual ~DtcReader();

    // When the code is not known: "manufacturer-specific" in the makers'
    // ranges, else "ISO/SAE Reserved". No case folding.
    std::string getDescription(const std::string& code) const;
    // By the first character; throws std::out_of_range for an empty code.
    std::string getCategory(const std::string& code) const;
    // Every code in ascending byte order.
    std::vector<std::string> getAllCodes() const;
    size_t size() const;

private:
    std::map<std::string, std::string> m_codes;
};

} // namespace Obd

#endif
