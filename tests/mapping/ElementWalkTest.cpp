#include "ElementWalk.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace {

using Index = sbus::ElementWalk::Index;

// "R8: 1 2" for an element with the points 1 and 2, "R9:" for one without.
QStringList walked(const Index& index, const char* media, quint32 first, int elements) {
    QStringList steps;
    sbus::ElementWalk walk(index, QString::fromLatin1(media), first);
    for (int i = 0; i < elements; ++i, walk.next()) {
        QString step = QString::fromLatin1(media) + walk.number().toString() + QLatin1Char(':');
        if (walk.points() != nullptr)
            for (const unsigned number : *walk.points())
                step += QStringLiteral(" %1").arg(number);
        steps << step;
    }
    return steps;
}

// A point for each element, with the element's number.
Index indexOf(const char* media, unsigned first, unsigned last) {
    Index index;
    for (unsigned element = first; element <= last; ++element)
        index[QString::fromLatin1(media) + QString::number(element)].append(element);
    return index;
}

} // namespace

TEST(ElementWalk, FindsAllPointsOfAnElement) {
    EXPECT_EQ(walked({{"R7", {3, 9}}}, "R", 7, 1), QStringList({"R7: 3 9"}));
}

TEST(ElementWalk, PassesOverElementsWithoutPoints) {
    EXPECT_EQ(walked({{"I10", {1}}, {"I12", {2}}}, "I", 9, 5),
              QStringList({"I9:", "I10: 1", "I11:", "I12: 2", "I13:"}));
}

TEST(ElementWalk, FindsNothingInAnEmptyIndex) {
    EXPECT_EQ(walked({}, "F", 0, 2), QStringList({"F0:", "F1:"}));
}

TEST(ElementWalk, KeepsMediaApart) {
    EXPECT_EQ(walked({{"C1", {1}}, {"R1", {2}}, {"R2", {3}}, {"T2", {4}}}, "R", 1, 3),
              QStringList({"R1: 2", "R2: 3", "R3:"}));
}

TEST(ElementWalk, MatchesNoNumberWithLeadingZeros) {
    EXPECT_EQ(walked({{"R007", {1}}, {"R8", {2}}}, "R", 7, 2), QStringList({"R7:", "R8: 2"}));
}

TEST(ElementWalk, FindsEveryElementHoweverManyDigitsItHas) {
    const Index index = indexOf("R", 0, 10'100);
    sbus::ElementWalk walk(index, QStringLiteral("R"), 0);
    for (unsigned element = 0; element <= 10'100; ++element, walk.next()) {
        ASSERT_EQ(walk.number().toString(), QString::number(element));
        ASSERT_NE(walk.points(), nullptr) << element;
        ASSERT_EQ(*walk.points(), QList<unsigned>{element});
    }
    EXPECT_EQ(walk.points(), nullptr);
}

TEST(ElementWalk, GoesOnAtZeroBehindTheHighestNumber) {
    EXPECT_EQ(walked({{"R0", {1}}, {"R4294967295", {2}}}, "R", 4'294'967'295, 2),
              QStringList({"R4294967295: 2", "R0: 1"}));
}

TEST(ElementWalk, WalksWithoutAMedia) {
    EXPECT_EQ(walked({{"9", {1}}, {"10", {2}}}, "", 9, 2), QStringList({"9: 1", "10: 2"}));
}
