#include "dtc.h"
#include "dtcreader.h"

namespace Obd {

namespace {

// Indexed by the upper nibble of the first byte (SAE J2012 layout).
const char* const PREFIXES[16] = {
    "P0", "P1", "P2", "P3", "C0", "C1", "C2", "C3",
    "B0", "B1", "B2", "B3", "U0", "U1", "U2", "U3"
};

const char HEX_DIGITS[] = "0123456789ABCDEF";

} // namespace

Dtc::Dtc()
{
}

Dtc::Dtc(const std::string& code)
    : m_code(code)
{
}

Dtc::~Dtc()
{
}

std::string Dtc::getCode() const
{
    return m_code;
}

void Dtc::setCode(const std::string& code)
{
    m_code = code;
}

std::string Dtc::getDescription() const
{
    return m_description;
}

void Dtc::setDescription(const std::string& description)
{
    m_description = description;
}

std::string Dtc::getCategory() const
{
    return m_category;
}

void Dtc::setCategory(const std::string& category)
{
    m_category = category;
}

std::string Dtc::getEcuName() const
{
    return m_ecuName;
}

unsigned int Dtc::getEcuId() const
{
    return m_ecuId;
}

void Dtc::setEcu(const std::string& shortName, unsigned int id)
{
    m_ecuName = shortName;
    m_ecuId = id;
}

std::string Dtc::categoryOf(const std::string& code)
{
    switch (code.empty() ? '\0' : code[0]) {
    case 'P':
        return "Powertrain";
    case 'B':
        return "Body";
    case 'C':
        return "Chassis";
    case 'U':
        return "Network";
    default:
        return "Undefined";
    }
}

bool Dtc::isManufacturerSpecific(const std::string& code)
{
    if (code.size() != 5)
        return false;
    const char digit = code[1];
    switch (code[0]) {
    case 'P':
        return digit == '1' || (digit == '3' && code[2] >= '0' && code[2] <= '3');
    case 'B':
    case 'C':
    case 'U':
        return digit == '1' || digit == '2';
    default:
        return false;
    }
}

bool Dtc::isEmptyPair(unsigned char a, unsigned char b)
{
    return (a & 0x0F) == 0 && b == 0;
}

std::string Dtc::codeFromBytes(unsigned char a, unsigned char b)
{
    if (isEmptyPair(a, b))
        return std::string();
    //   A: [7:4] prefix index  [3:0] first digit     B: two digits
    std::string code = PREFIXES[a >> 4];
    code += HEX_DIGITS[a & 0x0F];
    code += HEX_DIGITS[b >> 4];
    code += HEX_DIGITS[b & 0x0F];
    return code;
}

Dtc Dtc::describe(const std::string& code)
{
    Dtc dtc(code);
    dtc.setDescription(DtcReader::instance().getDescription(code));
    dtc.setCategory(categoryOf(code));
    return dtc;
}

} // namespace Obd
