#include "ElementFinder.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace {

using Index = sbus::ElementFinder::Index;

QStringList keys(const char* media, quint32 first, int count) {
    QStringList texts;
    sbus::ElementKey key(QString::fromLatin1(media), first);
    for (int i = 0; i < count; ++i, key.next()) {
        EXPECT_EQ(QString::fromLatin1(media) + key.number().toString(), key.text());
        texts << key.text();
    }
    return texts;
}

// What was found for each element: "1 2" for the points 1 and 2, "-" for none.
QStringList found(sbus::ElementFinder& finder, const char* media, quint32 first, int count) {
    QVector<QStringList> numbers(count);
    for (const sbus::PointAtElement& point : finder.find(QString::fromLatin1(media), first, count))
        if (point.element < count)
            numbers[point.element] << QString::number(point.pointNumber);
    QStringList texts;
    for (const QStringList& ofElement : numbers)
        texts << (ofElement.isEmpty() ? QStringLiteral("-") : ofElement.join(QLatin1Char(' ')));
    return texts;
}

QStringList found(const Index& index, const char* media, quint32 first, int count) {
    sbus::ElementFinder finder(index);
    return found(finder, media, first, count);
}

} // namespace

TEST(ElementKey, CountsUp) {
    EXPECT_EQ(keys("R", 7, 3), QStringList({"R7", "R8", "R9"}));
}

TEST(ElementKey, GrowsByADigitWhereTheNumberDoes) {
    EXPECT_EQ(keys("I", 9, 2), QStringList({"I9", "I10"}));
    EXPECT_EQ(keys("T", 9999, 2), QStringList({"T9999", "T10000"}));
}

TEST(ElementKey, CarriesOverNines) {
    EXPECT_EQ(keys("F", 1099, 2), QStringList({"F1099", "F1100"}));
}

TEST(ElementKey, ReadsLikeTheNumberForEveryElement) {
    sbus::ElementKey key(QStringLiteral("R"), 0);
    for (unsigned element = 0; element <= 100'100; ++element, key.next())
        ASSERT_EQ(key.number().toString(), QString::number(element));
}

TEST(ElementKey, GoesOnAtZeroBehindTheHighestNumber) {
    EXPECT_EQ(keys("R", 4'294'967'294, 3), QStringList({"R4294967294", "R4294967295", "R0"}));
}

TEST(ElementKey, CountsWithoutAMedia) {
    EXPECT_EQ(keys("", 99, 2), QStringList({"99", "100"}));
}

TEST(ElementFinder, FindsAllPointsOfAnElement) {
    EXPECT_EQ(found({{"R7", {3, 9}}}, "R", 7, 1), QStringList({"3 9"}));
}

TEST(ElementFinder, KnowsElementsWithoutPoints) {
    EXPECT_EQ(found({{"I10", {1}}, {"I12", {2}}}, "I", 9, 5), QStringList({"-", "1", "-", "2", "-"}));
}

TEST(ElementFinder, KeepsMediaApart) {
    const Index index{{"C1", {1}}, {"R1", {2}}, {"R2", {3}}, {"T2", {4}}};
    sbus::ElementFinder finder(index);
    EXPECT_EQ(found(finder, "R", 1, 2), QStringList({"2", "3"}));
    EXPECT_EQ(found(finder, "C", 1, 2), QStringList({"1", "-"}));
}

TEST(ElementFinder, MatchesNoNumberWithLeadingZeros) {
    EXPECT_EQ(found({{"R007", {1}}, {"R8", {2}}}, "R", 7, 2), QStringList({"-", "2"}));
}

TEST(ElementFinder, FindsTheSameAgain) {
    const Index index{{"R1", {1}}, {"R2", {2}}};
    sbus::ElementFinder finder(index);
    EXPECT_EQ(found(finder, "R", 1, 2), QStringList({"1", "2"}));
    EXPECT_EQ(found(finder, "R", 1, 2), QStringList({"1", "2"}));
}

TEST(ElementFinder, FindsMoreWhenTheNextTelegramFromTheSameElementIsLonger) {
    const Index index{{"R1", {1}}, {"R2", {2}}};
    sbus::ElementFinder finder(index);
    EXPECT_EQ(found(finder, "R", 1, 1), QStringList({"1"}));
    EXPECT_EQ(found(finder, "R", 1, 2), QStringList({"1", "2"}));
}

TEST(ElementFinder, FindsPointsInTheOrderOfTheirElements) {
    const Index index{{"R9", {4, 2}}, {"R10", {3}}, {"R11", {1}}};
    sbus::ElementFinder finder(index);
    QStringList order;
    for (const auto& [element, number] : finder.find(QStringLiteral("R"), 9, 3))
        order << QStringLiteral("%1: %2").arg(element).arg(number);
    EXPECT_EQ(order, QStringList({"0: 4", "0: 2", "1: 3", "2: 1"}));
}

TEST(ElementFinder, SearchesAnewWhatItWasToldToForget) {
    Index index{{"R1", {1}}};
    sbus::ElementFinder finder(index);
    EXPECT_EQ(found(finder, "R", 1, 1), QStringList({"1"}));
    index.clear();
    index["R1"].append(5);
    finder.forget();
    EXPECT_EQ(found(finder, "R", 1, 1), QStringList({"5"}));
}
