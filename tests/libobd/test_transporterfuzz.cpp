// Mutated real adapter replies through the transporter, and random frames
// through the CAN assembler and the legacy splitters: nothing may crash or
// read past the end (the sanitizer build shows the latter) and every result
// stays in range. ZARVANE_FUZZ_ITERATIONS scales the run for soaking.

#include "canresponse.h"
#include "fakeproxy.h"
#include "fakescantool.h"
#include "iscantool.h"
#include "logcapture.h"
#include "obdtransporter.h"
#include "powertrain/supportedpids.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;
typedef std::vector<std::string> Corpus;

const Corpus CAN11_REPLIES = {
    "7E8 06 41 00 BE 3F A8 13 \r7E9 06 41 00 98 18 80 11 \r",
    "7E9 06 41 00 98 18 80 11 AA \r7E8 06 41 00 BE 3F A8 13 AA \r",
    "7E8 10 14 49 02 01 31 47 31 \r7E8 21 4A 43 35 34 34 34 52 \r7E8 22 37 32 35 32 33 36 37 \r",
    "7E8 03 7F 01 12 \r",
};
const Corpus CAN29_REPLIES = {
    "18 DA F1 18 06 41 00 98 18 80 11 \r18 DA F1 10 06 41 00 BE 3F A8 13 \r",
    "18 DA F1 10 10 14 49 02 01 31 47 31 \r18 DA F1 10 21 4A 43 35 34 34 34 52 \r",
};
const Corpus KWP_REPLIES = {
    "86 F1 10 41 00 BE 3F A8 13 C2 \r86 F1 11 41 00 98 18 80 11 50 \r",
    "83 F1 10 7F 01 11 15 \r",
    "C3 F1 10 41 0D 32 26 \r",
};
const Corpus LEGACY_REPLIES = {
    "48 6B 10 41 00 BE 1F A8 13 5C \r48 6B 10 41 20 80 00 00 00 1D \r",
    "48 6B 10 41 00 BE 1F A8 13 5C \r48 6B 18 41 00 80 00 00 00 AA \r",
};
const Corpus HEADERLESS_REPLIES = {
    "41 00 BE 3F A8 13 \r",
    "014\r0: 49 02 01 31 47 31 \r1: 4A 43 35 34 34 34 52 \r",
};

class Mutator
{
public:
    explicit Mutator(unsigned int seed) : m_random(seed) {}

    size_t below(size_t n) { return n == 0 ? 0 : std::uniform_int_distribution<size_t>(0, n - 1)(m_random); }

    char randomChar()
    {
        static const char CHARS[] = "0123456789ABCDEF0123456789ABCDEF \r>.:GZa";
        return below(4) ? CHARS[below(sizeof(CHARS) - 1)] : static_cast<char>(below(256));
    }

    // A corpus reply with a few flips, inserts, cuts, splices or duplications.
    std::string reply(const Corpus& corpus)
    {
        std::string text = corpus[below(corpus.size())];
        for (size_t n = 1 + below(4); n > 0; --n) {
            const size_t at = below(text.size() + 1);
            switch (below(5)) {
            case 0:
                if (!text.empty())
                    text[below(text.size())] = randomChar();
                break;
            case 1:
                text.insert(text.begin() + at, randomChar());
                break;
            case 2:
                text.erase(at, 1 + below(4));
                break;
            case 3:
                text.insert(at, corpus[below(corpus.size())]);
                break;
            default:
                text.resize(at);
                break;
            }
        }
        return text;
    }

    Bytes bytes(size_t maxLength, unsigned char favourite)
    {
        Bytes out(below(maxLength));
        for (unsigned char& b : out)
            b = static_cast<unsigned char>(below(4) ? below(256) : favourite);
        return out;
    }

private:
    std::mt19937 m_random;
};

size_t iterations(size_t normal)
{
    const char* env = std::getenv("ZARVANE_FUZZ_ITERATIONS");
    return env ? static_cast<size_t>(std::strtoul(env, nullptr, 10)) : normal;
}

} // namespace

TEST(TransporterFuzz, MutatedRepliesAndRandomFramesKeepResultsInRange)
{
    const struct
    {
        unsigned int protocol;
        bool headers;
        const Corpus* corpus;
    } cases[] = {
        { PROTOCOL_CAN_11BIT, true, &CAN11_REPLIES }, { PROTOCOL_CAN_29BIT, true, &CAN29_REPLIES },
        { PROTOCOL_KWP2000, true, &KWP_REPLIES },     { PROTOCOL_ISO9141, true, &LEGACY_REPLIES },
        { PROTOCOL_J1850, true, &LEGACY_REPLIES },    { PROTOCOL_CAN_11BIT, false, &HEADERLESS_REPLIES },
        // Replies of another family than the protocol.
        { PROTOCOL_CAN_29BIT, true, &CAN11_REPLIES }, { PROTOCOL_CAN_11BIT, true, &KWP_REPLIES },
    };
    const size_t perCase = iterations(3000);
    Mutator mutator(20240607);
    ObdTransporter transporter;
    size_t outcomes[3] = { 0, 0, 0 };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.protocol);
        FakeScantool tool(c.protocol, c.headers, true);
        FakeProxy proxy(&tool);
        SupportedPids pids(1, 0x00);
        for (size_t i = 0; i < perCase; ++i) {
            if (i % 500 == 0)
                LogCapture::instance().clear();
            const std::string reply = mutator.reply(*c.corpus);
            tool.setReply("0100", reply);
            const ExchangeResult result = transporter.execute(&proxy, &pids);
            ASSERT_TRUE(result == ER_OK || result == ER_NO_DATA || result == ER_ERROR) << reply;
            ++outcomes[result];
        }
        // Whatever was stored decodes to offsets 1..32, ascending.
        std::vector<unsigned int> ids;
        pids.getEcuIds(ids);
        for (unsigned int id : ids) {
            EXPECT_LE(id, c.protocol == PROTOCOL_CAN_29BIT ? 0x1FFFFFFFu : 0xFFFu);
            Bytes list;
            ASSERT_TRUE(pids.getSupported(Ecu(id, c.protocol, ""), list));
            for (size_t k = 0; k < list.size(); ++k) {
                EXPECT_TRUE(list[k] >= 1 && list[k] <= 32 && (k == 0 || list[k - 1] < list[k])) << id;
            }
        }
    }
    // The mutations leave enough replies intact to reach every outcome.
    EXPECT_GT(outcomes[ER_OK], 0u);
    EXPECT_GT(outcomes[ER_NO_DATA], 0u);
    EXPECT_GT(outcomes[ER_ERROR], 0u);

    for (size_t round = 0; round < perCase * 10; ++round) {
        if (round % 5000 == 0)
            LogCapture::instance().clear();
        CanResponse response(PROTOCOL_CAN_11BIT);
        for (size_t f = 1 + mutator.below(5); f > 0; --f) {
            Bytes frame = mutator.bytes(12, 0x21);
            if (!frame.empty() && mutator.below(2))
                frame[0] = static_cast<unsigned char>(mutator.below(4) << 4 | mutator.below(16));
            const int used = response.addFrame(frame);
            ASSERT_TRUE(used == -1 || (used >= 1 && used <= 8 && static_cast<size_t>(used) <= frame.size()));
        }
        Bytes payload;
        if (response.getPayload(payload)) {
            ASSERT_EQ(response.getLength(), payload.size());
        }
        const Bytes bytes = mutator.bytes(40, 0x48);
        for (int guessed = 0; guessed < 2; ++guessed) {
            ObdTransporter::ByteTable table;
            const bool split = guessed ? transporter.splitGuessedResponse(bytes, table)
                                       : transporter.splitKwpResponse(bytes, table);
            size_t total = 0;
            for (const auto& entry : table)
                total += entry.second.size();
            ASSERT_TRUE(!split || total <= bytes.size());
        }
    }
    LogCapture::instance().clear();
}
