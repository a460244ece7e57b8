#include <HalvexDriverComponent/CPointList.h>

#include <gtest/gtest.h>

namespace {

StatusPoint statusPoint(unsigned number, const char* first, const char* second = "") {
    StatusPoint point;
    point.number = number;
    point.firstAddress = QString::fromLatin1(first);
    point.secondAddress = QString::fromLatin1(second);
    return point;
}

AnalogPoint analogPoint(unsigned number, const char* address) {
    AnalogPoint point;
    point.number = number;
    point.address = QString::fromLatin1(address);
    return point;
}

QString text(const char* latin1) {
    return QString::fromLatin1(latin1);
}

} // namespace

TEST(CPointList, FindsPointsByNumberAndKind) {
    CPointList list;
    StatusPoint* status = list.AddStatusPoint(statusPoint(7, "I7"));
    AnalogPoint* analog = list.AddAnalogPoint(analogPoint(7, "R7"));
    EXPECT_EQ(list.GetStatusPoint(7), status);
    EXPECT_EQ(list.GetAnalogPoint(7), analog);
    EXPECT_EQ(list.GetStatusPoint(8), nullptr);
    EXPECT_EQ(list.GetAnalogPoint(8), nullptr);
}

TEST(CPointList, FindsPointsHoweverFarApartTheirNumbersAre) {
    CPointList list;
    QMap<unsigned, AnalogPoint*> added;
    // 500 lies far beyond the first points, and in the middle of them in the end.
    for (const unsigned number : {500U, 4'294'967'295U, 2'147'483'648U, 0U})
        added[number] = list.AddAnalogPoint(analogPoint(number, "R1"));
    for (unsigned number = 1; number <= 1000; number += 3)
        added[number] = list.AddAnalogPoint(analogPoint(number, "R1"));
    for (auto point = added.cbegin(); point != added.cend(); ++point)
        EXPECT_EQ(list.GetAnalogPoint(point.key()), point.value()) << point.key();
    for (const unsigned number : {2U, 498U, 1001U, 2'147'483'647U})
        EXPECT_EQ(list.GetAnalogPoint(number), nullptr) << number;
}

TEST(CPointList, FindsNoPointOfAnEmptiedList) {
    CPointList list;
    for (const unsigned number : {1U, 4'000'000'000U})
        list.AddStatusPoint(statusPoint(number, "I1"));
    list.Clear();
    EXPECT_EQ(list.GetStatusPoint(1), nullptr);
    EXPECT_EQ(list.GetStatusPoint(4'000'000'000U), nullptr);
    StatusPoint* const added = list.AddStatusPoint(statusPoint(1, "F9"));
    EXPECT_EQ(list.GetStatusPoint(1), added);
}

TEST(CPointList, ListsPointsInAscendingNumber) {
    CPointList list;
    for (const unsigned number : {30U, 10U, 20U})
        list.AddAnalogPoint(analogPoint(number, "R1"));
    EXPECT_EQ(list.GetAnalogPointList().keys(), (QList<unsigned>{10, 20, 30}));
}

TEST(CPointList, PointOfTheSameNumberReplacesTheEarlierInItsPlace) {
    CPointList list;
    StatusPoint* before = list.AddStatusPoint(statusPoint(1, "I1"));
    StatusPoint* after = list.AddStatusPoint(statusPoint(1, "F9"));
    EXPECT_EQ(after, before);
    EXPECT_EQ(after->firstAddress, text("F9"));
    EXPECT_EQ(list.GetStatusPointList().size(), 1);
    after->firstAddress = text("F");
    list.RestoreStatusPoints();
    EXPECT_EQ(after->firstAddress, text("F9"));
}

TEST(CPointList, RestoresTheConfiguredAddressesOfSplitPoints) {
    CPointList list;
    StatusPoint* status = list.AddStatusPoint(statusPoint(1, "I200", "F10"));
    status->firstAddress = text("I");
    status->firstAddressNumber = text("200");
    status->secondAddress = text("F");
    status->secondAddressNumber = text("10");
    AnalogPoint* analog = list.AddAnalogPoint(analogPoint(2, "R5"));
    analog->address = text("R");
    analog->addressNumber = text("5");

    list.RestoreStatusPoints();
    EXPECT_EQ(status->firstAddress, text("I200"));
    EXPECT_EQ(status->firstAddressNumber, QString());
    EXPECT_EQ(status->secondAddress, text("F10"));
    EXPECT_EQ(status->secondAddressNumber, QString());
    EXPECT_EQ(analog->address, text("R"));

    list.RestoreAnalogPoints();
    EXPECT_EQ(analog->address, text("R5"));
    EXPECT_EQ(analog->addressNumber, QString());
}

TEST(CPointList, ClearForgetsPointsAndTheirConfiguration) {
    CPointList list;
    list.AddStatusPoint(statusPoint(1, "I1"));
    list.AddAnalogPoint(analogPoint(2, "R2"));
    list.Clear();
    EXPECT_TRUE(list.GetStatusPointList().isEmpty());
    EXPECT_TRUE(list.GetAnalogPointList().isEmpty());
    list.RestoreStatusPoints();
    list.RestoreAnalogPoints();
    EXPECT_EQ(list.GetStatusPoint(1), nullptr);
}
