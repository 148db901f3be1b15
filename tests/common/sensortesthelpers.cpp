#include "sensortesthelpers.h"

#include <cstdio>

std::string replyFor(unsigned char pid, unsigned char value)
{
    char text[32];
    std::snprintf(text, sizeof(text), "41 %02X %02X\r\r>", pid, value);
    return text;
}

std::string commandFor(unsigned char pid)
{
    char text[8];
    std::snprintf(text, sizeof(text), "01%02x", pid);
    return text;
}
