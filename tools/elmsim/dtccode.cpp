#include "dtccode.h"

namespace ElmSim {

namespace {

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

} // namespace

bool DtcCode::toBytes(const std::string& code, uint8_t bytes[2])
{
    //  A: 7-6 system (P C B U), 5-4 first digit, 3-0 second digit
    //  B: third and fourth digits
    static const char SYSTEMS[] = { 'P', 'C', 'B', 'U' };
    if (code.size() != 5)
        return false;
    int system = -1;
    for (int i = 0; i < 4; ++i) {
        if (code[0] == SYSTEMS[i])
            system = i;
    }
    const int first = hexValue(code[1]);
    const int second = hexValue(code[2]);
    const int third = hexValue(code[3]);
    const int fourth = hexValue(code[4]);
    if (system < 0 || first < 0 || first > 3 || second < 0 || third < 0 || fourth < 0)
        return false;
    bytes[0] = static_cast<uint8_t>((system << 6) | (first << 4) | second);
    bytes[1] = static_cast<uint8_t>((third << 4) | fourth);
    return true;
}

} // namespace ElmSim
