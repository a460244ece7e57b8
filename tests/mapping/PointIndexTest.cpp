#include "PointIndex.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <initializer_list>
#include <map>
#include <random>

namespace {

struct Keyed {
    const char* key;
    unsigned pointNumber;
};

sbus::PointIndex indexOf(std::initializer_list<Keyed> points) {
    sbus::PointIndex index;
    for (const Keyed& point : points)
        index.add(QString::fromUtf8(point.key), point.pointNumber);
    index.complete();
    return index;
}

// What was found for each element: "1 2" for the points 1 and 2, "-" for none. Fails where the elements do
// not come in their order.
QStringList found(const sbus::PointIndex& index, const char* media, quint32 first, int count) {
    QVector<QStringList> numbers(count);
    quint32 latest = 0;
    index.forEach(QString::fromLatin1(media), first, static_cast<quint32>(count),
                  [&](const sbus::PointIndex::Entry& entry) {
                      const quint32 place = entry.element - first;
                      EXPECT_GE(place, latest) << "element " << entry.element;
                      latest = place;
                      numbers[static_cast<int>(place)] << QString::number(entry.pointNumber);
                  });
    QStringList texts;
    for (const QStringList& ofElement : numbers)
        texts << (ofElement.isEmpty() ? QStringLiteral("-") : ofElement.join(QLatin1Char(' ')));
    return texts;
}

} // namespace

TEST(PointIndex, FindsThePointsOfElementsThatFollowEachOther) {
    EXPECT_EQ(found(indexOf({{"R9", 1}, {"R10", 2}, {"R11", 3}}), "R", 9, 3), QStringList({"1", "2", "3"}));
}

TEST(PointIndex, FindsAllPointsOfAnElementInTheOrderInWhichTheyWereAdded) {
    const auto index = indexOf({{"R8", 5}, {"R7", 9}, {"R7", 3}, {"R6", 8}, {"R7", 4}});
    EXPECT_EQ(found(index, "R", 7, 1), QStringList({"9 3 4"}));
    EXPECT_EQ(found(index, "R", 6, 3), QStringList({"8", "9 3 4", "5"}));
}

TEST(PointIndex, FindsNothingAtElementsWithoutPoints) {
    const auto index = indexOf({{"I10", 1}, {"I12", 2}});
    EXPECT_EQ(found(index, "I", 9, 5), QStringList({"-", "1", "-", "2", "-"}));
    EXPECT_EQ(found(index, "I", 13, 2), QStringList({"-", "-"}));
    EXPECT_EQ(found({}, "I", 0, 2), QStringList({"-", "-"}));
}

TEST(PointIndex, KeepsMediaApart) {
    const auto index = indexOf({{"C1", 1}, {"R1", 2}, {"R2", 3}, {"T2", 4}, {"RT1", 5}});
    EXPECT_EQ(found(index, "R", 1, 2), QStringList({"2", "3"}));
    EXPECT_EQ(found(index, "C", 1, 2), QStringList({"1", "-"}));
    EXPECT_EQ(found(index, "RT", 1, 2), QStringList({"5", "-"}));
    EXPECT_EQ(found(index, "", 1, 2), QStringList({"-", "-"}));
    EXPECT_EQ(found(index, "r", 1, 2), QStringList({"-", "-"}));
}

TEST(PointIndex, FindsNoKeyWithLeadingZeros) {
    const auto index = indexOf({{"R007", 1}, {"R00", 2}, {"R8", 3}, {"R0", 4}});
    EXPECT_EQ(found(index, "R", 7, 2), QStringList({"-", "3"}));
    EXPECT_EQ(found(index, "R", 0, 1), QStringList({"4"}));
}

TEST(PointIndex, FindsNoKeyThatIsNoMediaAndNumber) {
    const auto index = indexOf({{"R", 1},
                                {"", 2},
                                {"X12.3", 3},
                                {"R1x", 4},
                                {"R-1", 5},
                                {"R 1", 6},
                                {"R4294967296", 7},
                                {"R18446744073709551616", 8},
                                {"R\331\243", 9}}); // the Arabic-Indic digit 3
    for (const quint32 element : {0u, 1u, 2u, 3u, 12u, 4'294'967'295u})
        EXPECT_EQ(found(index, "R", element, 1), QStringList({"-"})) << element;
    EXPECT_EQ(found(index, "X12.", 3, 1), QStringList({"3"})) << "media \"X12.\", element 3";
}

TEST(PointIndex, FindsAKeyWithoutAMedia) {
    EXPECT_EQ(found(indexOf({{"5", 1}, {"R5", 2}}), "", 5, 1), QStringList({"1"}));
}

TEST(PointIndex, FindsTheHighestNumbersAndGoesOnAtZero) {
    const auto index = indexOf({{"R4294967295", 1}, {"R0", 2}, {"R1", 3}, {"R2147483648", 4}});
    EXPECT_EQ(found(index, "R", 4'294'967'294u, 4), QStringList({"-", "1", "2", "3"}));
    EXPECT_EQ(found(index, "R", 2'147'483'647u, 3), QStringList({"-", "4", "-"}));
}

TEST(PointIndex, FindsEachEntryOnceAmongAllElements) {
    const auto index = indexOf({{"R5", 1}, {"R7", 2}});
    QStringList numbers;
    index.forEach(QStringLiteral("R"), 6, 4'294'967'295u, [&](const sbus::PointIndex::Entry& entry) {
        numbers << QString::number(entry.pointNumber);
    });
    EXPECT_EQ(numbers, QStringList({"2"})) << "element 5 is the one that is left out";
}

TEST(PointIndex, FindsTheSameAgain) {
    const auto index = indexOf({{"R1", 1}, {"R2", 2}});
    EXPECT_EQ(found(index, "R", 1, 2), QStringList({"1", "2"}));
    EXPECT_EQ(found(index, "R", 1, 2), QStringList({"1", "2"}));
}

// The twin: a map from key to point numbers that is asked for each element.
TEST(PointIndex, AgreesWithAMapOfKeys) {
    std::mt19937 random(7);
    for (int repetition = 0; repetition < 50; ++repetition) {
        sbus::PointIndex index;
        std::map<QString, QStringList> twin;
        for (unsigned number = 1; number <= 200; ++number) {
            const QString key = QLatin1Char("CRT"[random() % 3]) + QString::number(random() % 150);
            index.add(key, number);
            twin[key] << QString::number(number);
        }
        index.complete();
        for (const char* const media : {"C", "R", "T"}) {
            const auto first = static_cast<quint32>(random() % 160);
            QStringList expected;
            for (quint32 element = first; element < first + 60; ++element) {
                const auto numbers = twin.find(QLatin1String(media) + QString::number(element));
                expected << (numbers == twin.end() ? QStringLiteral("-")
                                                   : numbers->second.join(QLatin1Char(' ')));
            }
            ASSERT_EQ(found(index, media, first, 60), expected) << media << first;
        }
    }
}
