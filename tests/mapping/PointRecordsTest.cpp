#include "PointRecords.h"

#include <HalvexDriverComponent/AnalogPoint.h>
#include <HalvexDriverComponent/StatusPoint.h>

#include <gtest/gtest.h>

#include <QStringList>

namespace {

AnalogPoint analogPoint(const char* address, const char* number = "") {
    AnalogPoint point;
    point.address = QString::fromUtf8(address);
    point.addressNumber = QString::fromUtf8(number);
    return point;
}

StatusPoint statusPoint(const char* first, const char* second = "") {
    StatusPoint point;
    point.firstAddress = QString::fromUtf8(first);
    point.secondAddress = QString::fromUtf8(second);
    return point;
}

QStringList keys(const QList<sbus::PointAddress>& addresses) {
    QStringList result;
    for (const sbus::PointAddress& address : addresses)
        result << address.key();
    return result;
}

} // namespace

TEST(AnalogAddress, IsSplitInPlace) {
    AnalogPoint point = analogPoint("R200");
    const sbus::PointAddress address = sbus::parseAnalogAddress(point);
    EXPECT_EQ(address.media, QStringLiteral("R"));
    EXPECT_EQ(address.numberText, QStringLiteral("200"));
    EXPECT_EQ(point.address, QStringLiteral("R"));
    EXPECT_EQ(point.addressNumber, QStringLiteral("200"));
}

TEST(AnalogAddress, OverwritesAnEarlierNumberField) {
    AnalogPoint point = analogPoint("T3", "999");
    EXPECT_EQ(sbus::parseAnalogAddress(point).number(), 3);
    EXPECT_EQ(point.addressNumber, QStringLiteral("3"));
}

TEST(AnalogAddress, OfASplitRecordGivesTheSamePairAgain) {
    AnalogPoint point = analogPoint("R007");
    sbus::parseAnalogAddress(point);
    const sbus::PointAddress again = sbus::parseAnalogAddress(point);
    EXPECT_EQ(again.media, QStringLiteral("R"));
    EXPECT_EQ(again.numberText, QStringLiteral("007"));
    EXPECT_EQ(again.number(), 7);
    EXPECT_EQ(point.address, QStringLiteral("R"));
    EXPECT_EQ(point.addressNumber, QStringLiteral("007"));
}

TEST(AnalogAddress, ThatDoesNotMatchIsCarriedOnAsTheMedia) {
    AnalogPoint point = analogPoint("X12.3");
    const sbus::PointAddress address = sbus::parseAnalogAddress(point);
    EXPECT_EQ(address.media, QStringLiteral("X12.3"));
    EXPECT_EQ(address.numberText, QString());
    EXPECT_EQ(address.number(), 0);
    EXPECT_EQ(point.address, QStringLiteral("X12.3"));
    EXPECT_EQ(point.addressNumber, QString());
}

TEST(AnalogAddress, ThatDoesNotMatchTakesItsNumberFieldAsTheNumber) {
    AnalogPoint point = analogPoint("r200", "17");
    const sbus::PointAddress address = sbus::parseAnalogAddress(point);
    EXPECT_EQ(address.media, QStringLiteral("r200"));
    EXPECT_EQ(address.number(), 17);
    EXPECT_EQ(point.addressNumber, QStringLiteral("17"));
}

TEST(AnalogAddress, WithANumberFieldThatIsNoNumberCountsAsZero) {
    AnalogPoint point = analogPoint("R", "two");
    const sbus::PointAddress address = sbus::parseAnalogAddress(point);
    EXPECT_EQ(address.media, QStringLiteral("R"));
    EXPECT_EQ(address.numberText, QStringLiteral("two"));
    EXPECT_EQ(address.number(), 0);
}

TEST(AnalogAddress, WithBlanksDoesNotMatch) {
    AnalogPoint leading = analogPoint(" R200");
    EXPECT_EQ(sbus::parseAnalogAddress(leading).media, QStringLiteral(" R200"));
    AnalogPoint inside = analogPoint("R 200");
    EXPECT_EQ(sbus::parseAnalogAddress(inside).media, QStringLiteral("R 200"));
}

TEST(StatusAddresses, AreBothSplitInPlace) {
    StatusPoint point = statusPoint("I10", "F020");
    EXPECT_EQ(keys(sbus::parseStatusAddresses(point)), (QStringList{"I10", "F020"}));
    EXPECT_EQ(point.firstAddress, QStringLiteral("I"));
    EXPECT_EQ(point.firstAddressNumber, QStringLiteral("10"));
    EXPECT_EQ(point.secondAddress, QStringLiteral("F"));
    EXPECT_EQ(point.secondAddressNumber, QStringLiteral("020"));
}

TEST(StatusAddresses, MatchAfterTheirBlanksAreRemoved) {
    StatusPoint point = statusPoint("R 200", " F 1 ");
    EXPECT_EQ(keys(sbus::parseStatusAddresses(point)), (QStringList{"R200", "F1"}));
    EXPECT_EQ(point.firstAddress, QStringLiteral("R"));
    EXPECT_EQ(point.firstAddressNumber, QStringLiteral("200"));
    EXPECT_EQ(point.secondAddress, QStringLiteral("F"));
    EXPECT_EQ(point.secondAddressNumber, QStringLiteral("1"));
}

TEST(StatusAddresses, WithAnEmptySecondGiveTheFirstAlone) {
    StatusPoint point = statusPoint("I5", "");
    EXPECT_EQ(keys(sbus::parseStatusAddresses(point)), QStringList{"I5"});
    EXPECT_EQ(point.secondAddress, QString());
    EXPECT_EQ(point.secondAddressNumber, QString());
}

TEST(StatusAddresses, WithAMalformedFirstGiveTheSecondAlone) {
    StatusPoint point = statusPoint("i5", "F10");
    const QList<sbus::PointAddress> addresses = sbus::parseStatusAddresses(point);
    ASSERT_EQ(addresses.size(), 1);
    EXPECT_EQ(addresses[0].media, QStringLiteral("F"));
    EXPECT_EQ(addresses[0].number(), 10);
    EXPECT_EQ(point.firstAddress, QStringLiteral("i5"));
    EXPECT_EQ(point.firstAddressNumber, QString());
    EXPECT_EQ(point.secondAddress, QStringLiteral("F"));
    EXPECT_EQ(point.secondAddressNumber, QStringLiteral("10"));
}

TEST(StatusAddresses, WithAMalformedSecondGiveTheFirstAlone) {
    StatusPoint point = statusPoint("O7", "F123456");
    EXPECT_EQ(keys(sbus::parseStatusAddresses(point)), QStringList{"O7"});
    EXPECT_EQ(point.secondAddress, QStringLiteral("F123456"));
    EXPECT_EQ(point.secondAddressNumber, QString());
}

TEST(StatusAddresses, ThatAreBothMalformedGiveNothing) {
    StatusPoint point = statusPoint("X12.3", "r1");
    EXPECT_TRUE(sbus::parseStatusAddresses(point).isEmpty());
    EXPECT_EQ(point.firstAddress, QStringLiteral("X12.3"));
    EXPECT_EQ(point.secondAddress, QStringLiteral("r1"));
}

TEST(StatusAddresses, KeepOtherWhiteSpaceAndThenDoNotMatch) {
    StatusPoint point = statusPoint("I\t5", "F\n6");
    EXPECT_TRUE(sbus::parseStatusAddresses(point).isEmpty());
}

TEST(StatusAddresses, OfASplitRecordGiveNothingAndStaySplit) {
    StatusPoint point = statusPoint("I10", "F20");
    sbus::parseStatusAddresses(point);
    EXPECT_TRUE(sbus::parseStatusAddresses(point).isEmpty());
    EXPECT_EQ(point.firstAddress, QStringLiteral("I"));
    EXPECT_EQ(point.firstAddressNumber, QStringLiteral("10"));
    EXPECT_EQ(point.secondAddress, QStringLiteral("F"));
    EXPECT_EQ(point.secondAddressNumber, QStringLiteral("20"));
}

TEST(StatusAddresses, DoNotTouchTheOutputAddresses) {
    StatusPoint point = statusPoint("I10", "I11");
    point.firstOutputAddress = QStringLiteral("O10");
    point.secondOutputAddress = QStringLiteral("O 11");
    sbus::parseStatusAddresses(point);
    EXPECT_EQ(point.firstOutputAddress, QStringLiteral("O10"));
    EXPECT_EQ(point.secondOutputAddress, QStringLiteral("O 11"));
}
