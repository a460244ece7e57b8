#include "telegram/AnswerTelegram.h"
#include "telegram/TelegramText.h"

#include <gtest/gtest.h>

#include <random>

namespace host {
namespace {

constexpr Framing framings[] = {Framing::Ethernet, Framing::DataMode, Framing::BreakMode};

const char* const requests[] = {
    "00 00 00 10 01 00 00 07 00 05 06 01 00 0A B1 88",
    "00 00 00 12 01 00 00 07 00 05 0D 03 00 C8 00 01 68 ED",
    "52 07 23 12 31 23 59 58 0C A6",
    "B5 00 05 06 01 00 0A 19 67",
    "B5 00 05 0E 05 00 0A 00 00 00 0C E8 BB",
    "05 06 01 00 0A 92 B4",
    "05 0F 05 00 05 00 00 00 64 D8 DC",
};
const char* const answers[] = {
    "00 00 00 13 01 00 00 07 01 00 00 00 0C FF FF FF FE FB 2B",
    "00 00 00 0D 01 00 00 07 02 00 00 D1 48",
    "B5 01 00 00 00 0C FF FF FF FE 62 39",
    "B5 02 00 01 33 D5",
    "00 00 00 0C FF FF FF FE 02 C5",
    "15",
};

struct GoodExchange {
    Framing framing;
    const char* sent;
    const char* received;
};

const GoodExchange goodExchanges[] = {{Framing::Ethernet, requests[0], answers[0]},
                                      {Framing::Ethernet, requests[1], answers[1]},
                                      {Framing::DataMode, requests[3], answers[2]},
                                      {Framing::BreakMode, requests[5], answers[4]}};

// The bytes in memory of exactly their size, so that a sanitizer sees a read beyond their end.
TelegramBytes exactly(const TelegramBytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

class RandomBytes {
public:
    std::size_t below(std::size_t limit) { return generator() % limit; }

    TelegramBytes bytes(std::size_t size) {
        TelegramBytes made;
        for (std::size_t i = 0; i < size; ++i)
            made.push_back(static_cast<std::uint8_t>(below(256)));
        return made;
    }

    // One of the telegrams with up to two bytes changed, and perhaps cut off.
    template <std::size_t count>
    TelegramBytes spoiled(const char* const (&telegrams)[count]) {
        TelegramBytes made = bytesOfHexText(telegrams[below(count)]);
        for (std::size_t changes = below(3); changes > 0; --changes)
            made[below(made.size())] = static_cast<std::uint8_t>(below(256));
        if (below(2) == 0)
            made.resize(below(made.size() + 1));
        return exactly(made);
    }

private:
    std::mt19937 generator{20230517};
};

// What holds of any bytes.
void expectConsistent(Framing framing, const TelegramBytes& sent, const TelegramBytes& received) {
    SCOPED_TRACE("sent " + hexText(sent) + ", received " + hexText(received));
    EXPECT_FALSE(telegramText(framing, sent, true).empty());
    const std::string words = answerText(framing, sent, received, true);
    EXPECT_FALSE(words.empty());
    EXPECT_LE(stationOf(framing, sent), 255U);
    const Answer answer = answerTo(framing, sent, received);
    EXPECT_EQ(answer == Answer::Silent, received.empty());
    EXPECT_EQ(answer == Answer::Damaged, words.rfind("damaged: ", 0) == 0);
    EXPECT_EQ(answer == Answer::Foreign, words.rfind("answer to an", 0) == 0);
    EXPECT_EQ(answer == Answer::Refused, words.rfind("refused", 0) == 0);
    EXPECT_EQ(answer == Answer::Good && isWriteTelegram(framing, sent), words == "acknowledged");
    if (answer == Answer::Refused) {
        const bool hasCode = acknowledgeCodeOf(framing, received).value_or(0) != 0;
        EXPECT_EQ(hasCode, framing != Framing::BreakMode);
    }
}

} // namespace

TEST(AnyBytes, AreReadWithinTheirBounds) {
    RandomBytes random;
    for (int round = 0; round < 5'000; ++round)
        for (const Framing framing : framings)
            expectConsistent(framing, random.bytes(random.below(40)), random.bytes(random.below(40)));
}

TEST(AnyBytes, OfSpoiledTelegramsAreReadWithinTheirBounds) {
    RandomBytes random;
    for (int round = 0; round < 10'000; ++round)
        for (const Framing framing : framings)
            expectConsistent(framing, random.spoiled(requests), random.spoiled(answers));
}

TEST(AnyBytes, OfCutOffTelegramsAreNeverGood) {
    for (const GoodExchange& good : goodExchanges) {
        const TelegramBytes sent = bytesOfHexText(good.sent);
        TelegramBytes received = bytesOfHexText(good.received);
        ASSERT_EQ(answerTo(good.framing, sent, received), Answer::Good) << good.received;
        for (received.pop_back(); !received.empty(); received.pop_back())
            EXPECT_EQ(answerTo(good.framing, sent, exactly(received)), Answer::Damaged) << hexText(received);
    }
}

TEST(AnyBytes, WithOneBitTurnedAreNeverGood) {
    for (const GoodExchange& good : goodExchanges) {
        const TelegramBytes sent = bytesOfHexText(good.sent);
        const TelegramBytes received = bytesOfHexText(good.received);
        for (std::size_t bit = 0; bit < received.size() * 8; ++bit) {
            TelegramBytes turned = received;
            turned[bit / 8] = static_cast<std::uint8_t>(turned[bit / 8] ^ 1U << bit % 8);
            EXPECT_EQ(answerTo(good.framing, sent, turned), Answer::Damaged) << hexText(turned);
        }
    }
}

} // namespace host
