#ifndef TEST_FUZZENTRIES_H
#define TEST_FUZZENTRIES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The entry points of the libFuzzer targets, shared with the corpus
// regression test so that every committed input runs in the normal suite.
// Each takes arbitrary bytes, drives one part of the library with them and
// returns false when a result breaks an invariant (the fuzzer aborts then);
// crashes and sanitizer reports are the other findings.
class FuzzEntries
{
public:
    typedef bool (*Entry)(const uint8_t* data, size_t size);

    // Byte 0: protocol class (bits 0-2), headers on (bit 3), parameter (bits
    // 4-6); the rest is the adapter's reply text.
    static bool transporter(const uint8_t* data, size_t size);
    // Byte 0 bit 0: 29-bit identifiers; then frames, each a length byte (mod 9) and its bytes.
    static bool canResponse(const uint8_t* data, size_t size);
    // Byte 0: PID index into the catalogue; byte 1: mode 2 (bit 0), protocol
    // (bits 1-3), signature prepended (bit 7); the rest is the ECU's payload.
    static bool pid(const uint8_t* data, size_t size);
    // Byte 0: protocol (bits 0-2), stored/pending/clear (bits 3-4), signature
    // prepended (bit 7); the rest is the payload.
    static bool troubleCodes(const uint8_t* data, size_t size);
    // Byte 0: service 09 parameter (bits 0-2), signature prepended (bit 7);
    // byte 1: protocol; the rest is the payload.
    static bool vehicleInfo(const uint8_t* data, size_t size);
    // Byte 0: monitor id; byte 1: protocol (bits 0-2), signature prepended (bit 7).
    static bool monitorTests(const uint8_t* data, size_t size);
    // Byte 0: test id; byte 1: protocol (bits 0-2), signature prepended (bit 7).
    static bool oxygenTests(const uint8_t* data, size_t size);
    // The bytes as adapter output: the error-word search over all of it,
    // then, split at each '>', the replies of the opening dialogue.
    static bool scantool(const uint8_t* data, size_t size);

    // Target name (the corpus folder) to entry; null for an unknown name.
    static Entry byName(const std::string& name);
    static std::vector<std::string> names();
};

#endif
