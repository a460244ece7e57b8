#include "plan/RefusedReads.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::ElementAddress;
using host::ReadTelegram;
using host::RefusedReads;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::set<unsigned> allOf(const ReadTelegram& telegram) {
    std::set<unsigned> elements;
    for (unsigned element = telegram.first; element <= telegram.last(); ++element)
        elements.insert(element);
    return elements;
}

std::vector<ReadTelegram> refuse(RefusedReads& reads, const ReadTelegram& telegram) {
    return reads.refused(telegram, allOf(telegram));
}

} // namespace

TEST(RefusedReads, HalvesATelegramThatIsRefused) {
    RefusedReads reads;
    EXPECT_TRUE(reads.isEmpty());
    EXPECT_THAT(refuse(reads, {'R', 10, 5}), ElementsAre(ReadTelegram{'R', 10, 3}, ReadTelegram{'R', 13, 2}));
    EXPECT_FALSE(reads.isEmpty());
}

TEST(RefusedReads, TakesAnElementThatIsRefusedAloneForAbsent) {
    RefusedReads reads;
    EXPECT_THAT(refuse(reads, {'R', 12, 1}), IsEmpty());
    EXPECT_FALSE(reads.isAbsent({'R', 12})) << "it may be a passing refusal";
    EXPECT_THAT(refuse(reads, {'R', 12, 1}), IsEmpty());
    EXPECT_TRUE(reads.isAbsent({'R', 12}));
    EXPECT_FALSE(reads.isAbsent({'T', 12}));
    EXPECT_FALSE(reads.mayJoin('R', 11, 13));
    EXPECT_TRUE(reads.mayJoin('R', 13, 14));
}

TEST(RefusedReads, ForgetsAPassingRefusal) {
    RefusedReads reads;
    refuse(reads, {'R', 12, 1});
    EXPECT_TRUE(reads.hasDoubts());
    reads.answered({'R', 10, 5});
    EXPECT_FALSE(reads.hasDoubts());
    refuse(reads, {'R', 12, 1});
    EXPECT_FALSE(reads.isAbsent({'R', 12}));
}

TEST(RefusedReads, TakesTheRefusalOfATelegramForThatOfItsElementsToo) {
    RefusedReads reads;
    refuse(reads, {'R', 12, 2});
    refuse(reads, {'R', 13, 1});
    EXPECT_TRUE(reads.isAbsent({'R', 13}));
}

TEST(RefusedReads, KeepsACutWhereNoElementIsToBlame) {
    RefusedReads reads;
    refuse(reads, {'R', 0, 4});
    EXPECT_FALSE(reads.mayJoin('R', 1, 2));
    EXPECT_TRUE(reads.mayJoin('R', 0, 1));
    EXPECT_TRUE(reads.mayJoin('R', 2, 3));
    EXPECT_TRUE(reads.mayJoin('T', 1, 2));
}

TEST(RefusedReads, TakesACutBackThatAnAbsentElementExplains) {
    RefusedReads reads;
    refuse(reads, {'R', 0, 4});
    refuse(reads, {'R', 2, 2});
    refuse(reads, {'R', 3, 1});
    EXPECT_TRUE(reads.mayJoin('R', 1, 2));
    EXPECT_THAT(reads.absent(), ElementsAre(ElementAddress{'R', 3}));
}

TEST(RefusedReads, CutsWhereElementsWereReadInVain) {
    RefusedReads reads;
    EXPECT_THAT(reads.refused({'R', 0, 6}, {0, 5}),
                ElementsAre(ReadTelegram{'R', 0, 1}, ReadTelegram{'R', 5, 1}));
    EXPECT_FALSE(reads.mayJoin('R', 0, 5));
}

TEST(RefusedReads, LeavesOutWhatWasReadInVainBehindTheOnlyElement) {
    RefusedReads reads;
    EXPECT_THAT(reads.refused({'R', 127, 2}, {127}), ElementsAre(ReadTelegram{'R', 127, 1}));
    EXPECT_TRUE(reads.mayJoin('R', 126, 127));
}

TEST(RefusedReads, TriesAbsentElementsAndTheShortestCutTelegramsAgain) {
    RefusedReads reads;
    refuse(reads, {'R', 0, 8});
    refuse(reads, {'R', 0, 4});
    refuse(reads, {'R', 70, 1});
    refuse(reads, {'R', 70, 1});
    EXPECT_THAT(reads.toTryAgain(), ElementsAre(ReadTelegram{'R', 70, 1}, ReadTelegram{'R', 0, 4}));
}

TEST(RefusedReads, TakesBackWhatIsAnswered) {
    RefusedReads reads;
    refuse(reads, {'R', 0, 4});
    refuse(reads, {'R', 70, 1});
    refuse(reads, {'R', 70, 1});
    EXPECT_FALSE(reads.answered({'R', 0, 2}));
    EXPECT_TRUE(reads.answered({'R', 0, 4}));
    EXPECT_TRUE(reads.mayJoin('R', 1, 2));
    EXPECT_TRUE(reads.answered({'R', 70, 1}));
    EXPECT_FALSE(reads.isAbsent({'R', 70}));
    EXPECT_THAT(reads.toTryAgain(), IsEmpty());
}
