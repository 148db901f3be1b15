#ifndef TEST_INFOTESTBYTES_H
#define TEST_INFOTESTBYTES_H

#include <random>
#include <string>
#include <vector>

namespace InfoTest {

// "49 02 01 31" -> {0x49, 0x02, 0x01, 0x31}; spaces are ignored.
inline std::vector<unsigned char> hexBytes(const std::string& text)
{
    std::vector<unsigned char> bytes;
    std::string digits;
    for (char c : text) {
        if (c != ' ')
            digits += c;
    }
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

// Characters of a text as bytes, padded with NUL to length.
inline std::string textHex(const std::string& text, size_t length)
{
    std::string out;
    static const char* const DIGITS = "0123456789ABCDEF";
    for (size_t i = 0; i < length; ++i) {
        const unsigned char c = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
        out += ' ';
        out += DIGITS[c >> 4];
        out += DIGITS[c & 0x0F];
    }
    return out;
}

inline std::vector<unsigned char> randomBytes(std::mt19937& random, size_t length)
{
    std::uniform_int_distribution<int> byte(0, 255);
    std::vector<unsigned char> bytes(length);
    for (unsigned char& b : bytes)
        b = static_cast<unsigned char>(byte(random));
    return bytes;
}

} // namespace InfoTest

#endif
