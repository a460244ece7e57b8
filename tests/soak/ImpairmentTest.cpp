#include "Impairment.h"

#include "Printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace soak;
using namespace std::chrono_literals;

namespace {

const QByteArray telegram = hex("00 00 00 0D 01 00 12 34 01 AA BB CC DD");
constexpr Clock::time_point start{};

std::vector<Delivery> passed(const Rates& rates, int count = 1, std::uint64_t seed = 1) {
    Impairment line(rates, seed);
    std::vector<Delivery> all;
    for (int i = 0; i < count; ++i)
        for (const Delivery& delivery : line.pass(telegram, start + i * 100ms))
            all.push_back(delivery);
    return all;
}

int differingBits(const QByteArray& a, const QByteArray& b) {
    int count = 0;
    for (int i = 0; i < a.size() * 8; ++i)
        count += ((a[i / 8] ^ b[i / 8]) >> (i % 8)) & 1;
    return count;
}

} // namespace

TEST(Impairment, AGoodLineForwardsEverythingUntouchedAndAtOnce) {
    const std::vector<Delivery> all = passed({}, 3);
    ASSERT_EQ(all.size(), 3U);
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(all[i].bytes, telegram);
        EXPECT_EQ(all[i].time, start + i * 100ms);
    }
}

TEST(Impairment, LosesItsShareOfTheTelegrams) {
    Rates rates;
    rates.loss = 0.2;
    const std::size_t arrived = passed(rates, 10'000).size();
    EXPECT_NEAR(static_cast<double>(arrived), 8'000, 200);
    rates.loss = 1;
    EXPECT_TRUE(passed(rates, 100).empty());
}

TEST(Impairment, DelaysWithinItsBoundAndKeepsTheOrder) {
    Rates rates;
    rates.delay = 0.5;
    rates.longestDelay = 30ms;
    Impairment line(rates, 1);
    Clock::time_point last = start;
    Clock::duration longest{};
    for (int i = 0; i < 1'000; ++i) {
        const Clock::time_point now = start + i * 10ms;
        const std::vector<Delivery> deliveries = line.pass(telegram, now);
        ASSERT_EQ(deliveries.size(), 1U);
        EXPECT_GE(deliveries[0].time, last);
        last = deliveries[0].time;
        longest = std::max(longest, last - now);
    }
    EXPECT_GT(longest, 25ms);
    EXPECT_LE(longest, 30ms);
}

TEST(Impairment, LetsTelegramsBeOvertaken) {
    Rates rates;
    rates.reordering = 1;
    rates.overtakenBy = 40ms;
    Impairment line(rates, 1);
    EXPECT_EQ(line.pass(telegram, start).at(0).time, start + 40ms);
    line.heal();
    EXPECT_EQ(line.pass(telegram, start + 10ms).at(0).time, start + 10ms);
}

TEST(Impairment, BringsATelegramTwice) {
    Rates rates;
    rates.duplication = 1;
    rates.longestDelay = 30ms;
    const std::vector<Delivery> both = passed(rates);
    ASSERT_EQ(both.size(), 2U);
    EXPECT_EQ(both[0].bytes, telegram);
    EXPECT_EQ(both[1].bytes, telegram);
    EXPECT_EQ(both[0].time, start);
    EXPECT_LE(both[1].time, start + 30ms);
}

TEST(Impairment, CutsTelegramsDownToNothing) {
    Rates rates;
    rates.truncation = 1;
    std::set<int> sizes;
    for (const Delivery& delivery : passed(rates, 1'000)) {
        EXPECT_TRUE(telegram.startsWith(delivery.bytes));
        sizes.insert(delivery.bytes.size());
    }
    EXPECT_EQ(*sizes.begin(), 0);
    EXPECT_EQ(*sizes.rbegin(), telegram.size() - 1);
    EXPECT_EQ(sizes.size(), static_cast<std::size_t>(telegram.size()));
}

TEST(Impairment, FlipsOneBitOrTwo) {
    Rates rates;
    rates.bitFlips = 1;
    std::set<int> counts;
    for (const Delivery& delivery : passed(rates, 1'000)) {
        ASSERT_EQ(delivery.bytes.size(), telegram.size());
        counts.insert(differingBits(delivery.bytes, telegram));
    }
    EXPECT_EQ(counts, (std::set<int>{1, 2}));
}

TEST(Impairment, LeavesAnEmptyTelegramEmpty) {
    Rates rates;
    rates.truncation = 1;
    rates.bitFlips = 1;
    Impairment line(rates, 1);
    EXPECT_EQ(line.pass({}, start).at(0).bytes, QByteArray());
}

TEST(Impairment, DoesTheSameForTheSameSeed) {
    const Rates all{0.2, 0.2, 0.2, 0.2, 0.2, 0.2};
    const auto texts = [&](std::uint64_t seed) {
        QStringList result;
        for (const Delivery& delivery : passed(all, 200, seed))
            result << QString::number(delivery.time.time_since_epoch().count()) + toHex(delivery.bytes);
        return result;
    };
    EXPECT_EQ(texts(1), texts(1));
    EXPECT_NE(texts(1), texts(2));
}

TEST(Impairment, ForwardsAllUntouchedOnceItIsHealed) {
    const Rates all{0.5, 0.5, 0.5, 0.5, 0.5, 0.5};
    Impairment line(all, 1);
    Clock::time_point now = start;
    for (int i = 0; i < 100; ++i)
        line.pass(telegram, now += 1ms);
    EXPECT_GT(line.impaired(), 90U);
    line.heal();
    now += 1s; // longer than anything is held back
    const std::uint64_t before = line.impaired();
    for (int i = 0; i < 100; ++i) {
        const std::vector<Delivery> deliveries = line.pass(telegram, now += 1ms);
        ASSERT_EQ(deliveries.size(), 1U);
        EXPECT_EQ(deliveries[0].bytes, telegram);
        EXPECT_EQ(deliveries[0].time, now);
    }
    EXPECT_EQ(line.impaired(), before);
}
