#include "AnalogWriteListBench.h"

#include <random>

using Halvex::PointDataType;

namespace {

using AnalogWriteListRunsTest = AnalogWriteListBench;

} // namespace

// --- Kinds

TEST_F(AnalogWriteListRunsTest, SendsCountersThenRegistersThenTimers) {
    list("T", 1);
    list("R", 2);
    list("C", 3);
    EXPECT_EQ(telegrams(), (Items{writeItem(10, 3, 0, word(3)), writeItem(14, 2, 0, word(2)),
                                  writeItem(15, 1, 0, word(1))}));
}

TEST_F(AnalogWriteListRunsTest, SendsRegistersBeforeTimers) {
    list("T", 1, 2);
    list("R", 8, 9);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 8, 2, words(8, 2)), writeItem(15, 1, 2, words(1, 2))}));
}

TEST_F(AnalogWriteListRunsTest, DoesNotRunFromOneKindIntoTheNext) {
    list("C", 1, 2);
    list("R", 3, 4);
    list("T", 5, 6);
    EXPECT_EQ(telegrams(), (Items{writeItem(10, 1, 2, words(1, 2)), writeItem(14, 3, 2, words(3, 2)),
                                  writeItem(15, 5, 2, words(5, 2))}));
}

TEST_F(AnalogWriteListRunsTest, KeepsEqualNumbersOfTwoKindsApart) {
    listValue("R", 5, 1);
    listValue("T", 5, 2);
    listValue("C", 5, 3);
    EXPECT_EQ(telegrams(), (Items{writeItem(10, 5, 0, word(3)), writeItem(14, 5, 0, word(1)),
                                  writeItem(15, 5, 0, word(2))}));
}

// --- Runs

TEST_F(AnalogWriteListRunsTest,
       PutsConsecutiveElementsIntoOneTelegramAndALoneLastOneIntoAnotherWithCountZero) {
    list("R", 100, 102);
    list("R", 104);
    const Items items = telegrams();
    EXPECT_EQ(items, (Items{writeItem(14, 100, 3, words(100, 3)), writeItem(14, 104, 0, word(104))}));
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items[0].data.size(), 12);
    EXPECT_EQ(items[1].data.size(), 4);
}

TEST_F(AnalogWriteListRunsTest, SendsTheOnlyPointOfAKindWithCountZero) {
    list("R", 5);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 5, 0, word(5))}));
}

TEST_F(AnalogWriteListRunsTest, SendsALonePointBeforeOthersWithCountOne) {
    list("R", 1);
    list("R", 5, 6);
    list("R", 9);
    list("R", 11, 12);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 1, word(1)), writeItem(14, 5, 2, words(5, 2)),
                                  writeItem(14, 9, 1, word(9)), writeItem(14, 11, 2, words(11, 2))}));
}

TEST_F(AnalogWriteListRunsTest, HasALoneLastPointInEachKind) {
    list("C", 1);
    list("C", 3);
    list("R", 1);
    list("R", 3);
    EXPECT_EQ(telegrams(), (Items{writeItem(10, 1, 1, word(1)), writeItem(10, 3, 0, word(3)),
                                  writeItem(14, 1, 1, word(1)), writeItem(14, 3, 0, word(3))}));
}

TEST_F(AnalogWriteListRunsTest, BreaksARunAtEveryGap) {
    for (int number : {1, 3, 5, 7})
        list("R", number);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 1, word(1)), writeItem(14, 3, 1, word(3)),
                                  writeItem(14, 5, 1, word(5)), writeItem(14, 7, 0, word(7))}));
}

TEST_F(AnalogWriteListRunsTest, OrdersElementsByTheirNumberAndNotByThePoints) {
    listValue("R", 12, 1);
    listValue("R", 9, 2);
    listValue("R", 11, 3);
    listValue("R", 100, 4);
    listValue("R", 10, 5);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 9, 4, word(2) + word(5) + word(3) + word(1)),
                                  writeItem(14, 100, 0, word(4))}));
}

TEST_F(AnalogWriteListRunsTest, StartsAtElementZero) {
    list("R", 0, 2);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 0, 3, words(0, 3))}));
}

TEST_F(AnalogWriteListRunsTest, LaterPointReplacesAnEarlierOneOfTheSameElement) {
    listValue("R", 5, 1);
    listValue("R", 5, 2);
    listValue("R", 6, 3);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 5, 2, word(2) + word(3))}));
}

TEST_F(AnalogWriteListRunsTest, TellsElementsApartByTheirNumberAndNotItsText) {
    listPoint(1, "R", "7", 1);
    listPoint(2, "R", "007", 2);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 7, 0, word(2))}));
}

TEST_F(AnalogWriteListRunsTest, WritesElementZeroForANumberTextThatIsNoNumber) {
    listPoint(1, "R", "many", 3);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 0, 0, word(3))}));
}

TEST_F(AnalogWriteListRunsTest, OrdersNegativeElementsBeforeZeroAndRunsOnFromThem) {
    list("R", -5);
    list("R", -2, 1);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 4'294'967'291u, 1, word(-5)),
                                  writeItem(14, 4'294'967'294u, 4, words(-2, 4))}));
}

TEST_F(AnalogWriteListRunsTest, LooksUpTheValueByThePointsOwnNumberAndWritesZeroWithoutOne) {
    listPoint(1, "R", "5", 111);
    listPoint(2, "R", "6", 222);
    rtu->GetPointList()->GetAnalogPoint(1)->number = 2;
    rtu->GetPointList()->GetAnalogPoint(2)->number = 99;
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 5, 2, word(222) + word(0))}));
}

// --- The limit of 31 values

TEST_F(AnalogWriteListRunsTest, PutsThirtyOneValuesIntoOneTelegram) {
    list("R", 1, 31);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31))}));
}

TEST_F(AnalogWriteListRunsTest, PutsTheThirtySecondConsecutiveValueIntoATelegramOfItsOwnWithCountOne) {
    list("R", 1, 32);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 1, word(32))}));
}

TEST_F(AnalogWriteListRunsTest, SplitsFortyConsecutiveValuesIntoThirtyOneAndNine) {
    list("R", 1, 40);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 9, words(32, 9))}));
}

TEST_F(AnalogWriteListRunsTest, SplitsALongRunEveryThirtyOneValues) {
    list("R", 1, 62);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 31, words(32, 31))}));
    list("R", 63);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 31, words(32, 31)),
                                  writeItem(14, 63, 1, word(63))}));
    list("R", 64, 100);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 31, words(32, 31)),
                                  writeItem(14, 63, 31, words(63, 31)), writeItem(14, 94, 7, words(94, 7))}));
}

TEST_F(AnalogWriteListRunsTest, CarriesTheValueAfterASplitToTheElementThatFollows) {
    list("R", 1, 32);
    list("R", 40);
    EXPECT_EQ(telegrams(),
              (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 2, word(32) + word(40))}));
}

TEST_F(AnalogWriteListRunsTest, GoesOnWithTheRunOfTheValueThatWasCarried) {
    list("R", 1, 32);
    list("R", 40, 42);
    list("R", 50);
    EXPECT_EQ(telegrams(),
              (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 4, word(32) + words(40, 3)),
                     writeItem(14, 50, 0, word(50))}));
}

TEST_F(AnalogWriteListRunsTest, CarriesOneValueAndNotTheNextOneBehindAGap) {
    list("R", 1, 32);
    list("R", 40);
    list("R", 50);
    EXPECT_EQ(telegrams(),
              (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 2, word(32) + word(40)),
                     writeItem(14, 50, 0, word(50))}));
}

TEST_F(AnalogWriteListRunsTest, CarriesAValueAfterALaterSplitToo) {
    list("R", 1, 63);
    list("R", 70);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 31, words(32, 31)),
                                  writeItem(14, 63, 2, word(63) + word(70))}));
}

TEST_F(AnalogWriteListRunsTest, CarriesNothingWhenARunOfThirtyOneEndsAtAGap) {
    list("R", 1, 31);
    list("R", 40);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 40, 0, word(40))}));
    list("R", 50);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 40, 1, word(40)),
                                  writeItem(14, 50, 0, word(50))}));
}

TEST_F(AnalogWriteListRunsTest, CarriesNothingWithinARunOfThirtyThreeOrMore) {
    list("R", 1, 33);
    list("R", 40);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 2, words(32, 2)),
                                  writeItem(14, 40, 0, word(40))}));
}

TEST_F(AnalogWriteListRunsTest, CarriesNothingIntoTheNextKind) {
    list("C", 1, 32);
    list("R", 40);
    EXPECT_EQ(telegrams(), (Items{writeItem(10, 1, 31, words(1, 31)), writeItem(10, 32, 1, word(32)),
                                  writeItem(14, 40, 0, word(40))}));
}

TEST_F(AnalogWriteListRunsTest, CountsACarriedValueTowardsTheLimit) {
    list("R", 1, 32);
    list("R", 40, 69); // with 32 in front: 31 values
    EXPECT_EQ(telegrams(),
              (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 31, word(32) + words(40, 30))}));
    list("R", 70);
    EXPECT_EQ(telegrams(),
              (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 31, word(32) + words(40, 30)),
                     writeItem(14, 70, 1, word(70))}));
}

TEST_F(AnalogWriteListRunsTest, CountsValuesAndNotBytesTowardsTheLimit) {
    for (int number = 1; number <= 32; ++number)
        listValue("R", number, 1, PointDataType::Float);
    const Items items = telegrams();
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items[0].count, 31u);
    EXPECT_EQ(items[0].data.size(), 31 * 8);
    EXPECT_EQ(items[1].count, 1u);
    EXPECT_EQ(items[1].data.size(), 8);
}

TEST_F(AnalogWriteListRunsTest, LandsEveryValueAtItsOwnElementAsLongAsNoRunIsLongerThanThirtyOne) {
    std::mt19937 random(4);
    for (int repetition = 0; repetition < 200; ++repetition) {
        values.clear();
        QMap<int, QByteArray> wanted;
        int number = static_cast<int>(random() % 100);
        const int runs = 1 + static_cast<int>(random() % 8);
        for (int run = 0; run < runs; ++run) {
            const int length = 1 + static_cast<int>(random() % 31);
            for (int i = 0; i < length; ++i, ++number) {
                const int value = static_cast<int>(random());
                listValue("R", number, value);
                wanted[number] = word(value);
            }
            number += 1 + static_cast<int>(random() % 50);
        }
        QMap<int, QByteArray> landed;
        for (const SBusRequestItem& item : telegrams())
            for (int offset = 0; offset < item.data.size(); offset += 4)
                landed[static_cast<int>(item.address) + offset / 4] = item.data.mid(offset, 4);
        ASSERT_EQ(landed, wanted) << repetition;
    }
}
