#include "ReadItems.h"

#include <gtest/gtest.h>

namespace {

// Command, address, count: the order in which a telegram is spoken of.
struct Read {
    quint32 command;
    quint32 address;
    quint32 count;
};

bool operator==(const Read& a, const Read& b) {
    return a.command == b.command && a.address == b.address && a.count == b.count;
}

void PrintTo(const Read& read, std::ostream* out) {
    *out << '(' << read.command << ", " << read.address << ", " << read.count << ')';
}

std::vector<Read> reads(const char* media, const sbus::MediaAddressSet& elements) {
    std::vector<Read> result;
    for (const SBusRequestItem& item : sbus::buildReadItems(QString::fromLatin1(media), elements)) {
        EXPECT_TRUE(item.data.isEmpty());
        result.push_back({item.command, item.address, item.count});
    }
    return result;
}

sbus::MediaAddressSet run(int first, int last) {
    sbus::MediaAddressSet elements;
    for (int element = first; element <= last; ++element)
        elements[element] = 1;
    return elements;
}

sbus::MediaAddressSet run(int first, int last, std::initializer_list<int> others) {
    sbus::MediaAddressSet elements = run(first, last);
    for (int element : others)
        elements[element] = 1;
    return elements;
}

using Reads = std::vector<Read>;

} // namespace

TEST(ReadItems, OfAnEmptySetAreNone) {
    EXPECT_EQ(reads("R", {}), Reads{});
}

TEST(ReadItems, OfASingleElementAreOneWithCountZero) {
    EXPECT_EQ(reads("R", run(200, 200)), (Reads{{6, 200, 0}}));
}

TEST(ReadItems, MergeConsecutiveElementsAndStartAnewAfterAGap) {
    EXPECT_EQ(reads("I", run(10, 12, {20})), (Reads{{3, 10, 2}, {3, 20, 0}}));
}

TEST(ReadItems, OfElementsThatAreNotAdjacentStandAlone) {
    EXPECT_EQ(reads("F", {{5, 1}, {7, 1}}), (Reads{{2, 5, 0}, {2, 7, 0}}));
}

TEST(ReadItems, FollowOneGapAfterAnother) {
    EXPECT_EQ(reads("O", {{1, 1}, {2, 1}, {9, 1}, {20, 1}, {21, 1}, {22, 1}}),
              (Reads{{5, 1, 1}, {5, 9, 0}, {5, 20, 2}}));
}

TEST(ReadItems, CutACounterRunAfterThirtyOneElements) {
    EXPECT_EQ(reads("C", run(0, 40)), (Reads{{0, 0, 30}, {0, 31, 9}}));
}

TEST(ReadItems, BelowTheSmallLimitAreOne) {
    EXPECT_EQ(reads("T", run(0, 30)), (Reads{{7, 0, 30}}));
}

TEST(ReadItems, ThatReachTheSmallLimitWithTheLastElementGoOutWithCommandZeroAndOneElementTooMany) {
    EXPECT_EQ(reads("T", run(0, 31)), (Reads{{0, 0, 30}, {7, 31, 1}}));
}

TEST(ReadItems, BeyondTheSmallLimitStartAnewAtTheElementThatReachedIt) {
    EXPECT_EQ(reads("T", run(0, 32)), (Reads{{7, 0, 30}, {7, 31, 1}}));
}

TEST(ReadItems, BelowTheLargeLimitAreOne) {
    for (const auto& [media, command] :
         {std::pair{"R", 6u}, std::pair{"F", 2u}, std::pair{"O", 5u}, std::pair{"I", 3u}})
        EXPECT_EQ(reads(media, run(0, 126)), (Reads{{command, 0, 126}})) << media;
}

TEST(ReadItems, ThatReachTheLargeLimitWithTheLastElementGoOutWithCommandZeroAndOneElementTooMany) {
    for (const auto& [media, command] :
         {std::pair{"R", 6u}, std::pair{"F", 2u}, std::pair{"O", 5u}, std::pair{"I", 3u}})
        EXPECT_EQ(reads(media, run(100, 227)), (Reads{{0, 100, 126}, {command, 227, 1}})) << media;
}

TEST(ReadItems, BeyondTheLargeLimitStartAnewAtTheElementThatReachedIt) {
    EXPECT_EQ(reads("R", run(0, 128)), (Reads{{6, 0, 126}, {6, 127, 1}}));
}

TEST(ReadItems, ThatReachTheLimitASecondTimeWithTheLastElementGoOutWithCommandZeroThen) {
    EXPECT_EQ(reads("T", run(0, 62)), (Reads{{7, 0, 30}, {0, 31, 30}, {7, 62, 1}}));
    EXPECT_EQ(reads("R", run(0, 254)), (Reads{{6, 0, 126}, {0, 127, 126}, {6, 254, 1}}));
}

TEST(ReadItems, TakeTheElementAfterACutWithoutLookingAtItsNumber) {
    // Timers 31 and 32 are read; 40 is not.
    EXPECT_EQ(reads("T", run(0, 31, {40})), (Reads{{7, 0, 30}, {7, 31, 1}}));
}

TEST(ReadItems, GoOnFromAFarElementThatJoinedAfterACut) {
    EXPECT_EQ(reads("T", run(0, 31, {40, 41})), (Reads{{7, 0, 30}, {7, 31, 2}}));
    EXPECT_EQ(reads("T", run(0, 31, {40, 50})), (Reads{{7, 0, 30}, {7, 31, 1}, {7, 50, 0}}));
}

TEST(ReadItems, OfALetterWithoutElementsAreReadAsRegisters) {
    EXPECT_EQ(reads("X", run(3, 4)), (Reads{{6, 3, 1}}));
    EXPECT_EQ(reads("X12.3", run(0, 0)), (Reads{{6, 0, 0}}));
    EXPECT_EQ(reads("X", run(0, 126)), (Reads{{6, 0, 126}}));
    EXPECT_EQ(reads("X", run(0, 127)), (Reads{{0, 0, 126}, {6, 127, 1}}));
}

TEST(ReadItems, OfTheLetterPAreReadAsRegistersUnderTheSmallLimit) {
    EXPECT_EQ(reads("P", run(0, 30)), (Reads{{6, 0, 30}}));
    EXPECT_EQ(reads("P", run(0, 31)), (Reads{{0, 0, 30}, {6, 31, 1}}));
}

TEST(ReadItems, CountTheElementsThatAnEntryOccupies) {
    EXPECT_EQ(reads("R", {{200, 4}}), (Reads{{6, 200, 3}}));
    EXPECT_EQ(reads("R", {{0, 2}, {2, 3}}), (Reads{{6, 0, 4}}));
    EXPECT_EQ(reads("R", {{0, 2}, {2, 3}, {5, 1}}), (Reads{{6, 0, 5}}));
    EXPECT_EQ(reads("R", {{0, 2}, {3, 3}}), (Reads{{6, 0, 1}, {6, 3, 2}}));
    EXPECT_EQ(reads("R", {{0, 2}, {2, 3}, {9, 1}}), (Reads{{6, 0, 4}, {6, 9, 0}}));
}

TEST(ReadItems, CountAStoredZeroAsOne) {
    EXPECT_EQ(reads("R", {{200, 0}}), (Reads{{6, 200, 0}}));
    EXPECT_EQ(reads("R", {{5, 0}, {6, 0}, {8, 0}}), (Reads{{6, 5, 1}, {6, 8, 0}}));
}

TEST(ReadItems, CutBeforeAnEntryThatWouldReachTheLimit) {
    EXPECT_EQ(reads("R", {{0, 100}, {100, 50}, {150, 1}}), (Reads{{6, 0, 99}, {6, 100, 50}}));
    EXPECT_EQ(reads("R", {{0, 100}, {100, 50}}), (Reads{{0, 0, 99}, {6, 100, 50}}));
}

TEST(ReadItems, OfASingleEntryAreNeverCut) {
    EXPECT_EQ(reads("T", {{0, 200}}), (Reads{{7, 0, 199}}));
    EXPECT_EQ(reads("T", {{0, 200}, {300, 1}}), (Reads{{7, 0, 199}, {7, 300, 0}}));
}

struct MediaLimit {
    const char* media;
    quint32 command;
    int limit;
};

void PrintTo(const MediaLimit& media, std::ostream* out) {
    *out << media.media;
}

class ReadItemsOfARun : public testing::TestWithParam<MediaLimit> {};

// One below the limit fits a telegram; a run whose last element reaches the limit has the two traits there.
TEST_P(ReadItemsOfARun, OfAnyLengthUpToAThousandCoverItAsTheLimitSays) {
    const auto [media, command, limit] = GetParam();
    const quint32 full = static_cast<quint32>(limit) - 1;
    for (quint32 length = 1; length <= 1000; ++length) {
        const quint32 first = 7;
        const bool endsAtLimit = length > full && (length - 1) % full == 0;
        Reads expected;
        quint32 done = 0;
        for (; length - done > full; done += full)
            expected.push_back({command, first + done, full - 1});
        if (endsAtLimit) {
            expected.back().command = 0;
            expected.push_back({command, first + done, 1});
        } else {
            expected.push_back({command, first + done, length - done - 1});
        }
        ASSERT_EQ(reads(media, run(7, 6 + static_cast<int>(length))), expected) << "length " << length;
    }
}

INSTANTIATE_TEST_SUITE_P(Media, ReadItemsOfARun,
                         testing::Values(MediaLimit{"R", 6, 128}, MediaLimit{"F", 2, 128},
                                         MediaLimit{"O", 5, 128}, MediaLimit{"I", 3, 128},
                                         MediaLimit{"T", 7, 32}, MediaLimit{"C", 0, 32}));
