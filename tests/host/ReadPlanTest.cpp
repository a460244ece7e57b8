#include "plan/ReadPlan.h"
#include "ReadItems.h"
#include "Sanitized.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

// The host's model of the read telegrams against the driver's own building of them.

using host::hiddenElements;
using host::planTelegrams;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Elements = std::set<unsigned>;

// Under a sanitizer two of the longest telegrams and a piece.
constexpr unsigned longestRun = isSanitized ? 300 : 1000;
const std::string allMedia = "IOFRTC";
const std::map<char, unsigned> readCommands = {{'C', 0}, {'F', 2}, {'I', 3}, {'O', 5}, {'R', 6}, {'T', 7}};

Elements run(unsigned first, unsigned length) {
    Elements elements;
    for (unsigned element = first; element < first + length; ++element)
        elements.insert(elements.end(), element);
    return elements;
}

Elements both(Elements one, const Elements& other) {
    one.insert(other.begin(), other.end());
    return one;
}

QList<SBusRequestItem> driverItems(char media, const Elements& elements) {
    sbus::MediaAddressSet set;
    for (const unsigned element : elements)
        set.insert(set.cend(), static_cast<int>(element), 1);
    return sbus::buildReadItems(QString(QLatin1Char(media)), set);
}

// Empty when the driver reads each of `elements` with the command of their media and with no other command.
std::string misread(char media, const Elements& elements, const QList<SBusRequestItem>& items) {
    Elements unread = elements;
    for (const SBusRequestItem& item : items) {
        if (item.command != readCommands.at(media))
            return "command " + std::to_string(item.command);
        unread.erase(unread.lower_bound(item.address), unread.upper_bound(item.address + item.count));
    }
    return unread.empty() ? "" : std::to_string(*unread.begin()) + " is not read";
}

Elements shielded(char media, const Elements& elements) {
    Elements result = elements;
    for (const unsigned hidden : hiddenElements(media, elements))
        EXPECT_TRUE(result.insert(hidden).second) << media << hidden << " is there already";
    return result;
}

std::string planMismatch(char media, const Elements& elements, const QList<SBusRequestItem>& items) {
    const std::vector<host::ReadTelegram> plan = planTelegrams(media, elements);
    if (plan.size() != static_cast<std::size_t>(items.size()))
        return std::to_string(plan.size()) + " telegrams planned, " + std::to_string(items.size()) + " built";
    for (std::size_t i = 0; i < plan.size(); ++i) {
        const SBusRequestItem& item = items[static_cast<int>(i)];
        if (plan[i].first != item.address || plan[i].count != item.count + 1)
            return "telegram " + std::to_string(i) + " differs";
    }
    return "";
}

// Empty when, once shielded, the driver reads every one of `elements`, just as planned.
std::string faultOnceShielded(char media, const Elements& elements) {
    const Elements all = shielded(media, elements);
    const QList<SBusRequestItem> items = driverItems(media, all);
    const std::string fault = misread(media, elements, items);
    return fault.empty() ? planMismatch(media, all, items) : fault;
}

std::vector<unsigned> neighbourLengths(char media) {
    const unsigned limit = host::readLimit(media);
    return {1, 2, limit - 1, limit, limit + 1, 2 * limit - 1};
}

void checkEveryRunBeforeANeighbour(char media, unsigned gap) {
    for (unsigned length = 1; length <= longestRun; ++length)
        for (const unsigned neighbour : neighbourLengths(media)) {
            const Elements elements = both(run(10, length), run(10 + length + gap, neighbour));
            ASSERT_EQ(faultOnceShielded(media, elements), "")
                << media << ": " << length << ", gap " << gap << ", then " << neighbour;
        }
}

class GapBehindRun : public testing::TestWithParam<unsigned> {};

} // namespace

TEST(ReadPlan, KnowsTheRunLengthsThatTheDriverMisreads) {
    for (const char media : allMedia)
        for (unsigned length = 1; length <= longestRun; ++length) {
            const Elements elements = run(0, length);
            const Elements withFarNeighbour = both(elements, run(5000, 1));
            const bool critical = host::isCriticalRunLength(media, length);
            // With one run alone, the counters' own command hides the fault behind a telegram of one too
            // many.
            if (media != 'C') {
                ASSERT_EQ(misread(media, elements, driverItems(media, elements)).empty(), !critical)
                    << media << length;
            }
            ASSERT_EQ(misread(media, withFarNeighbour, driverItems(media, withFarNeighbour)).empty(),
                      !critical)
                << media << length;
        }
}

TEST(ReadPlan, ReadsEveryRunAlone) {
    for (const char media : allMedia)
        for (unsigned length = 1; length <= longestRun; ++length)
            ASSERT_EQ(faultOnceShielded(media, run(7, length)), "") << media << length;
}

TEST_P(GapBehindRun, ReadsEveryRunOfRegistersAndItsNeighbour) {
    checkEveryRunBeforeANeighbour('R', GetParam());
}

TEST_P(GapBehindRun, ReadsEveryRunOfTimersAndItsNeighbour) {
    checkEveryRunBeforeANeighbour('T', GetParam());
}

INSTANTIATE_TEST_SUITE_P(ReadPlan, GapBehindRun, testing::Values(1U, 2U, 3U, 20'000U));

TEST(ReadPlan, ReadsEveryMediaWithCriticalNeighbours) {
    for (const char media : allMedia) {
        const unsigned limit = host::readLimit(media);
        for (const unsigned gap : {1U, 2U, 3U})
            for (const unsigned first : {limit - 1, limit, 2 * limit - 1})
                for (const unsigned second : {limit - 2, limit - 1, limit, limit + 1})
                    for (const unsigned third : {1U, limit - 1, limit}) {
                        const unsigned secondStart = first + gap;
                        const unsigned thirdStart = secondStart + second + gap;
                        const Elements elements =
                            both(both(run(0, first), run(secondStart, second)), run(thirdStart, third));
                        ASSERT_EQ(faultOnceShielded(media, elements), "")
                            << media << first << "," << second << "," << third << ", gap " << gap;
                    }
    }
}

TEST(ReadPlan, AddsOneElementAtTheEndOfACriticalRunAlone) {
    EXPECT_THAT(hiddenElements('R', run(0, 127)), IsEmpty());
    EXPECT_THAT(hiddenElements('R', run(0, 128)), ElementsAre(128));
    EXPECT_THAT(hiddenElements('R', run(0, 129)), IsEmpty());
    EXPECT_THAT(hiddenElements('F', run(100, 255)), ElementsAre(355));
    EXPECT_THAT(hiddenElements('T', run(0, 32)), ElementsAre(32));
    EXPECT_THAT(hiddenElements('C', run(0, 63)), ElementsAre(63));
    EXPECT_THAT(hiddenElements('C', run(0, 1)), IsEmpty());
}

TEST(ReadPlan, JudgesRunsThatAHiddenElementJoinsAgain) {
    // 128, the hidden one at 128, and 126 more make 255: critical in its turn.
    EXPECT_THAT(hiddenElements('R', both(run(0, 128), run(129, 126))), ElementsAre(128, 255));
    // A critical run behind is none any more once the two are one.
    EXPECT_THAT(hiddenElements('R', both(run(0, 128), run(129, 128))), ElementsAre(128));
}

TEST(ReadPlan, AddsTheElementInFrontOfARunThatEndsAtTheHighest) {
    EXPECT_THAT(hiddenElements('R', run(65536 - 128, 128)), ElementsAre(65536 - 129));
    EXPECT_EQ(faultOnceShielded('R', run(65536 - 128, 128)), "");
    // Joined in front, the run is judged again.
    const Elements elements = both(run(65536 - 255, 126), run(65536 - 128, 128));
    EXPECT_THAT(hiddenElements('R', elements), ElementsAre(65536 - 129, 65536 - 256));
    EXPECT_EQ(faultOnceShielded('R', elements), "");
}

TEST(ReadPlan, ReadsAllElementsThatThereAre) {
    for (const char media : allMedia)
        EXPECT_EQ(faultOnceShielded(media, run(0, 65536)), "") << media;
}

TEST(ReadPlan, KeepsMediaApart) {
    host::Rtu rtu;
    for (unsigned number = 0; number < 128; ++number)
        for (const char media : {'R', 'F'}) {
            host::Point point;
            point.address = {media, number};
            rtu.points.push_back(point);
        }
    const host::RtuReadPlan plan = host::planReads(rtu);
    EXPECT_THAT(plan.hidden, ElementsAre(host::ElementAddress{'F', 128}, host::ElementAddress{'R', 128}));
    EXPECT_EQ(plan.status.size(), 2U);
    EXPECT_EQ(plan.analog.size(), 2U);
}
