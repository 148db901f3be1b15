// Random and mutated adapter replies through the transporter and the CAN
// assembler: nothing may crash, hang or read past the end (run under the
// sanitizer build to see the latter), and every result stays in range.
// ZARVANE_FUZZ_ITERATIONS scales the run for soaking.

#include "canresponse.h"
#include "fakeproxy.h"
#include "fakescantool.h"
#include "iscantool.h"
#include "logcapture.h"
#include "obdtransporter.h"
#include "parameters/supportedtids.h"
#include "parameters/supportedvehicleinfos.h"
#include "powertrain/supportedpids.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <random>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;

// Real replies per protocol family, as the adapter prints them.
const std::vector<std::string> CAN11_REPLIES = {
    "7E8 06 41 00 BE 3F A8 13 \r",
    "7E8 06 41 00 BE 3F A8 13 \r7E9 06 41 00 98 18 80 11 \r",
    "7E9 06 41 00 98 18 80 11 AA \r7E8 06 41 00 BE 3F A8 13 AA \r",
    "7E8 10 14 49 02 01 31 47 31 \r7E8 21 4A 43 35 34 34 34 52 \r7E8 22 37 32 35 32 33 36 37 \r",
    "7E8 10 16 49 04 01 41 42 43 \r7E8 21 44 45 46 47 48 49 4A \r7E8 22 4B 4C 4D 4E 4F 50 51 \r"
    "7E8 23 52 53 00 00 00 00 00 \r",
    "7E8 03 7F 01 12 \r",
    "7E8 04 41 0C 14 5F \r",
    "7E8 06 49 00 55 40 00 00 \r",
};
const std::vector<std::string> CAN29_REPLIES = {
    "18 DA F1 10 06 41 00 BE 3F A8 13 \r",
    "18 DA F1 18 06 41 00 98 18 80 11 \r18 DA F1 10 06 41 00 BE 3F A8 13 \r",
    "18 DA F1 10 10 14 49 02 01 31 47 31 \r18 DA F1 10 21 4A 43 35 34 34 34 52 \r"
    "18 DA F1 10 22 37 32 35 32 33 36 37 \r",
    "18 DA F1 10 04 41 0C 1A F8 \r",
};
const std::vector<std::string> KWP_REPLIES = {
    "84 F1 10 41 0C 1A F8 D6 \r",
    "86 F1 10 41 00 BE 3F A8 13 C2 \r86 F1 11 41 00 98 18 80 11 50 \r",
    "87 F1 10 49 00 01 55 40 00 00 2F \r",
    "83 F1 10 7F 01 11 15 \r",
    "C3 F1 10 41 0D 32 26 \r",
};
const std::vector<std::string> LEGACY_REPLIES = {
    "48 6B 10 41 00 BE 1F A8 13 5C \r48 6B 10 41 20 80 00 00 00 1D \r",
    "48 6B 10 41 0C 1A F8 C5 \r48 6B 18 41 0C 1B 00 AA \r",
    "48 6B 10 45 00 02 FF E0 00 00 2B \r",
    "48 6B 10 49 00 01 55 40 00 00 2F \r",
    "48 6B 10 46 00 00 C0 00 00 01 6E \r",
};
const std::vector<std::string> HEADERLESS_REPLIES = {
    "41 00 BE 3F A8 13 \r",
    "014\r0: 49 02 01 31 47 31 \r1: 4A 43 35 34 34 34 52 \r2: 37 32 35 32 33 36 37 \r",
    "SEARCHING...\r41 00 BE 3F A8 13 \r",
};

const char HEX[] = "0123456789ABCDEF";

class Mutator
{
public:
    explicit Mutator(unsigned int seed) : m_random(seed) {}

    size_t below(size_t n) { return n == 0 ? 0 : std::uniform_int_distribution<size_t>(0, n - 1)(m_random); }

    char randomChar()
    {
        switch (below(4)) {
        case 0:
        case 1:
            return HEX[below(16)];
        case 2: {
            static const char OTHER[] = " \r\n>.:?GZaf";
            return OTHER[below(sizeof(OTHER) - 1)];
        }
        default:
            return static_cast<char>(below(256));
        }
    }

    std::string randomHex(size_t length)
    {
        std::string text;
        for (size_t i = 0; i < length; ++i)
            text.push_back(HEX[below(16)]);
        return text;
    }

    std::string reply(const std::vector<std::string>& corpus)
    {
        switch (below(10)) {
        case 0:
            return randomHex(below(80));
        case 1: {
            std::string text;
            for (size_t n = below(40); n > 0; --n)
                text.push_back(static_cast<char>(below(256)));
            return text;
        }
        default:
            break;
        }
        std::string text = corpus[below(corpus.size())];
        for (size_t n = 1 + below(4); n > 0; --n)
            mutate(text, corpus);
        return text;
    }

    void mutate(std::string& text, const std::vector<std::string>& corpus)
    {
        const size_t at = below(text.size() + 1);
        switch (below(7)) {
        case 0: // flip a character
            if (!text.empty())
                text[below(text.size())] = randomChar();
            break;
        case 1: // insert a character
            text.insert(text.begin() + at, randomChar());
            break;
        case 2: // delete a run
            if (!text.empty())
                text.erase(below(text.size()), 1 + below(4));
            break;
        case 3: // truncate
            text.resize(at);
            break;
        case 4: // splice another reply in
            text.insert(at, corpus[below(corpus.size())]);
            break;
        case 5: // change a hex digit (keeps the layout, breaks the values)
            if (!text.empty()) {
                size_t i = below(text.size());
                if (isxdigit(static_cast<unsigned char>(text[i])))
                    text[i] = HEX[below(16)];
            }
            break;
        default: // duplicate a line
            text += text.substr(0, at);
            break;
        }
    }

private:
    std::mt19937 m_random;
};

size_t iterations(size_t normal)
{
    if (const char* env = std::getenv("ZARVANE_FUZZ_ITERATIONS"))
        return static_cast<size_t>(std::strtoul(env, nullptr, 10));
    return normal;
}

void checkOffsets(const Bytes& list)
{
    for (size_t i = 0; i < list.size(); ++i) {
        ASSERT_GE(list[i], 1);
        ASSERT_LE(list[i], 32);
        if (i) {
            ASSERT_LT(list[i - 1], list[i]);
        }
    }
}

template <class Parameter>
void checkDecoded(const Parameter& parameter, unsigned int protocol)
{
    std::vector<unsigned int> ids;
    parameter.getEcuIds(ids);
    for (unsigned int id : ids) {
        if (protocol == PROTOCOL_CAN_11BIT) {
            // Three hex digits; the range is not checked against 0x7FF.
            ASSERT_LE(id, 0xFFFu);
        } else if (protocol == PROTOCOL_CAN_29BIT) {
            ASSERT_LE(id, 0x1FFFFFFFu);
        } else {
            ASSERT_LE(id, 0xFFu);
        }
        Bytes list;
        ASSERT_TRUE(parameter.getSupported(Ecu(id, protocol, ""), list));
        checkOffsets(list);
    }
}

} // namespace

TEST(TransporterFuzz, MutatedRepliesNeverCrashAndResultsStayInRange)
{
    const size_t perCase = iterations(12000);
    struct Case
    {
        unsigned int protocol;
        bool headers;
        const std::vector<std::string>* corpus;
    } cases[] = {
        {PROTOCOL_CAN_11BIT, true, &CAN11_REPLIES},   {PROTOCOL_CAN_29BIT, true, &CAN29_REPLIES},
        {PROTOCOL_KWP2000, true, &KWP_REPLIES},       {PROTOCOL_ISO9141, true, &LEGACY_REPLIES},
        {PROTOCOL_J1850, true, &LEGACY_REPLIES},      {PROTOCOL_UNKNOWN, true, &CAN11_REPLIES},
        {PROTOCOL_CAN_11BIT, false, &HEADERLESS_REPLIES}, {PROTOCOL_KWP2000, false, &HEADERLESS_REPLIES},
        // Replies of the wrong family for the protocol class.
        {PROTOCOL_CAN_29BIT, true, &CAN11_REPLIES},   {PROTOCOL_KWP2000, true, &LEGACY_REPLIES},
        {PROTOCOL_J1850, true, &KWP_REPLIES},         {PROTOCOL_CAN_11BIT, true, &KWP_REPLIES},
    };
    Mutator mutator(20240607);
    ObdTransporter transporter;
    size_t counts[3] = {0, 0, 0};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.protocol);
        FakeScantool tool(c.protocol, c.headers, true);
        FakeProxy proxy(&tool);
        std::unique_ptr<SupportedPids> pids;
        std::unique_ptr<SupportedVehicleInfos> infos;
        std::unique_ptr<SupportedTids> tids;
        for (size_t i = 0; i < perCase; ++i) {
            if (i % 1000 == 0) {
                if (pids) {
                    checkDecoded(*pids, c.protocol);
                    checkDecoded(*infos, c.protocol);
                    checkDecoded(*tids, c.protocol);
                }
                pids.reset(new SupportedPids(1, 0x00));
                infos.reset(new SupportedVehicleInfos(0x00));
                tids.reset(new SupportedTids(0x00, 1));
                LogCapture::instance().clear();
                tool.clearRecord();
            }
            const std::string reply = mutator.reply(*c.corpus);
            ObdParameter* parameter = nullptr;
            switch (i % 3) {
            case 0:
                parameter = pids.get();
                tool.setReply("0100", reply);
                break;
            case 1:
                parameter = infos.get();
                tool.setReply("0900", reply);
                break;
            default:
                parameter = tids.get();
                tool.setReply("050002", reply);
                break;
            }
            const ExchangeResult result = transporter.execute(&proxy, parameter);
            ASSERT_TRUE(result == ER_OK || result == ER_NO_DATA || result == ER_ERROR)
                << "reply: " << reply;
            ++counts[result];
        }
        checkDecoded(*pids, c.protocol);
    }
    LogCapture::instance().clear();
    // The corpus keeps enough replies intact to exercise every outcome.
    EXPECT_GT(counts[ER_OK], 0u);
    EXPECT_GT(counts[ER_NO_DATA], 0u);
    EXPECT_GT(counts[ER_ERROR], 0u);
}

TEST(TransporterFuzz, RandomFramesThroughCanResponseAndSplitters)
{
    const size_t rounds = iterations(12000) * 10;
    Mutator mutator(77);
    ObdTransporter transporter;
    for (size_t round = 0; round < rounds; ++round) {
        if (round % 20000 == 0)
            LogCapture::instance().clear();
        // A handful of frames of plausible shape into one assembler.
        CanResponse response(PROTOCOL_CAN_11BIT);
        for (size_t f = 1 + mutator.below(5); f > 0; --f) {
            Bytes frame(mutator.below(12));
            for (unsigned char& b : frame)
                b = static_cast<unsigned char>(mutator.below(256));
            if (!frame.empty() && mutator.below(2))
                frame[0] = static_cast<unsigned char>((mutator.below(4) << 4) | mutator.below(16));
            const int used = response.addFrame(frame);
            ASSERT_TRUE(used == -1 || (used >= 1 && used <= 8 && static_cast<size_t>(used) <= frame.size()));
        }
        Bytes payload;
        if (response.getPayload(payload)) {
            ASSERT_EQ(response.getLength(), payload.size());
        }

        Bytes bytes(mutator.below(40));
        for (unsigned char& b : bytes)
            b = static_cast<unsigned char>(mutator.below(4) ? mutator.below(256) : 0x48);
        ObdTransporter::ByteTable kwp, guessed;
        size_t total = 0;
        if (transporter.splitKwpResponse(bytes, kwp)) {
            for (const auto& e : kwp)
                total += e.second.size();
            ASSERT_LE(total, bytes.size());
        }
        total = 0;
        if (transporter.splitGuessedResponse(bytes, guessed)) {
            for (const auto& e : guessed)
                total += e.second.size();
            ASSERT_LE(total, bytes.size());
        }
    }
    LogCapture::instance().clear();
}
