#ifndef ELMSIM_REPLYNOISE_H
#define ELMSIM_REPLYNOISE_H

#include <cstddef>
#include <random>
#include <string>

namespace ElmSim {

// What adapters print besides their answers: non-printable bytes (NUL and
// 0xFC/0xFE around a reset, others on a noisy line) and the status lines of
// a Bluetooth module. Never CR, LF or '>', so the reply keeps its shape.
namespace ReplyNoise {

bool chance(std::mt19937& random, unsigned int oneIn);
std::string bytes(std::mt19937& random);        // one to three of them
std::string statusLine(std::mt19937& random);   // "+CONNECTED" and the like, no line end
// A space before every CR that ends a non-empty line, from `from` on.
void addTrailingSpaces(std::string& text, size_t from);

} // namespace ReplyNoise

} // namespace ElmSim

#endif
