#include "replynoise.h"

namespace ElmSim {

namespace ReplyNoise {

namespace {

const char NOISE_BYTES[] = { '\x00', '\xFC', '\xFE', '\x01', '\x11', '\x13', '\x1B', '\x7F', '\x80', '\xFF' };
const char* const STATUS_LINES[] = { "+CONNECTED", "+DISCONNECTED", "+PAIRABLE", "+CONNECTING", "+RSSI=-61" };

size_t pick(std::mt19937& random, size_t count)
{
    return std::uniform_int_distribution<size_t>(0, count - 1)(random);
}

} // namespace

bool chance(std::mt19937& random, unsigned int oneIn)
{
    return pick(random, oneIn) == 0;
}

std::string bytes(std::mt19937& random)
{
    std::string noise;
    for (size_t n = 1 + pick(random, 3); n > 0; --n)
        noise.push_back(NOISE_BYTES[pick(random, sizeof(NOISE_BYTES))]);
    return noise;
}

std::string statusLine(std::mt19937& random)
{
    return STATUS_LINES[pick(random, sizeof(STATUS_LINES) / sizeof(STATUS_LINES[0]))];
}

void addTrailingSpaces(std::string& text, size_t from)
{
    for (size_t i = from; i < text.size(); ++i) {
        if (text[i] == '\r' && i > from && text[i - 1] != ' ' && text[i - 1] != '\r' && text[i - 1] != '\n') {
            text.insert(i, 1, ' ');
            ++i;
        }
    }
}

} // namespace ReplyNoise

} // namespace ElmSim
