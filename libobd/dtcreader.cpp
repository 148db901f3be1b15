#include "dtcreader.h"
#include "dtc.h"

namespace Obd {

DtcReader& DtcReader::instance()
{
    // Built on first use; the first-use guard is thread-safe.
    static DtcReader reader;
    return reader;
}

DtcReader::DtcReader()
{
    unsigned int count = 0;
    const DtcRow* rows = dtcTable(count);
    for (unsigned int i = 0; i < count; ++i)
        m_codes[rows[i].code] = rows[i].description;
}

DtcReader::~DtcReader()
{
}

std::string DtcReader::getDescription(const std::string& code) const
{
    auto it = m_codes.find(code);
    if (it == m_codes.end())
        return Dtc::isManufacturerSpecific(code) ? "manufacturer-specific" : "ISO/SAE Reserved";
    return it->second;
}

std::string DtcReader::getCategory(const std::string& code) const
{
    // The checked access: an empty code is a caller's error here.
    code.at(0);
    return Dtc::categoryOf(code);
}

std::vector<std::string> DtcReader::getAllCodes() const
{
    std::vector<std::string> codes;
    codes.reserve(m_codes.size());
    for (const auto& entry : m_codes)
        codes.push_back(entry.first);
    return codes;
}

size_t DtcReader::size() const
{
    return m_codes.size();
}

} // namespace Obd
