#include "SmallSite.h"
#include "runtime/HostRuntime.h"

#include <HalvexDriverComponent/CRtu.h>

#include <gtest/gtest.h>

// What the driver is given for the RTUs and points of a site.

namespace {

class Records : public testing::Test {
protected:
    host::Rtu rtu = smallSite().channels[0].rtus[0];
};

} // namespace

TEST_F(Records, CarryTheRtuSettingsAsTexts) {
    rtu.transmitType = host::TransmitType::Break;
    rtu.breakDelayMs = 12;
    const RemoteTerminalUnit record = host::makeRtuRecord(rtu);
    EXPECT_EQ(record.id, 7);
    EXPECT_EQ(record.scan.stationAddress, QStringLiteral("5"));
    EXPECT_EQ(record.scan.transmitType, QStringLiteral("1"));
    EXPECT_EQ(record.scan.breakDelay, QStringLiteral("12"));
    EXPECT_EQ(record.sessionTimeOutMs, 200);
    EXPECT_EQ(record.periods.statusMs, 1'000);
    EXPECT_EQ(record.periods.analogMs, 2'000);
    EXPECT_EQ(record.periods.integrityMs, 60'000);
}

TEST_F(Records, AskForNoPollWithoutPoints) {
    rtu.points.erase(rtu.points.begin()); // the status point
    EXPECT_EQ(host::makeRtuRecord(rtu).periods.statusMs, 0);
    EXPECT_EQ(host::makeRtuRecord(rtu).periods.analogMs, 2'000);
    rtu.points.clear();
    EXPECT_EQ(host::makeRtuRecord(rtu).periods.analogMs, 0);
    EXPECT_EQ(host::makeRtuRecord(rtu).periods.integrityMs, 0);
}

TEST_F(Records, CarryThePointFields) {
    rtu.points[0].value = 1;
    rtu.points[0].secondAddress = host::ElementAddress{'O', 33};
    rtu.points[0].secondValue = 2;
    rtu.points[0].pulseMs = 500;
    CRtu target(nullptr, nullptr, host::makeRtuRecord(rtu));
    host::addPoints(target, rtu);
    const StatusPoint& run = *target.GetPointList()->GetStatusPoint(0);
    EXPECT_EQ(run.firstAddress, QStringLiteral("O32"));
    EXPECT_EQ(run.firstOutputAddress, QStringLiteral("O32"));
    EXPECT_EQ(run.firstOutputValue, QStringLiteral("1"));
    EXPECT_EQ(run.secondOutputAddress, QStringLiteral("O33"));
    EXPECT_EQ(run.secondOutputValue, QStringLiteral("2"));
    EXPECT_EQ(run.secondAddress, QString()); // not read: it would cost a telegram
    EXPECT_TRUE(run.pulse);
    EXPECT_EQ(run.pulseWidthMs, 500U);
    EXPECT_EQ(target.GetPointList()->GetAnalogPoint(1)->dataType, 14U);
    EXPECT_EQ(target.GetPointList()->GetAnalogPoint(2)->dataType, 0U);
    EXPECT_EQ(target.GetPointList()->GetAnalogPoint(2)->address, QStringLiteral("R101"));
}

TEST_F(Records, GiveAPointThatIsOnlyCommandedNoInputAddress) {
    rtu.points[0].isPolled = false;
    CRtu target(nullptr, nullptr, host::makeRtuRecord(rtu));
    host::addPoints(target, rtu);
    const StatusPoint& run = *target.GetPointList()->GetStatusPoint(0);
    EXPECT_EQ(run.firstAddress, QString());
    EXPECT_EQ(run.firstOutputAddress, QStringLiteral("O32"));
}

TEST_F(Records, GiveAnInputNoOutputAddress) {
    rtu.points[0].address = {'I', 32};
    CRtu target(nullptr, nullptr, host::makeRtuRecord(rtu));
    host::addPoints(target, rtu);
    EXPECT_EQ(target.GetPointList()->GetStatusPoint(0)->firstOutputAddress, QString());
}

TEST_F(Records, NumberPointsByTheirPositionWhateverTheirIds) {
    rtu.points[0].id = 900;
    CRtu target(nullptr, nullptr, host::makeRtuRecord(rtu));
    host::addPoints(target, rtu);
    EXPECT_EQ(target.GetPointList()->GetStatusPoint(0)->name, QStringLiteral("RUN"));
    EXPECT_EQ(target.GetPointList()->GetStatusPoint(900), nullptr);
    EXPECT_EQ(target.GetPointList()->GetAnalogPoint(2)->name, QStringLiteral("LEVEL"));
}

TEST_F(Records, GiveAFloatAnIntegerTwinBehindAllOtherNumbers) {
    CRtu target(nullptr, nullptr, host::makeRtuRecord(rtu));
    host::addPoints(target, rtu);
    const AnalogPoint* const twin =
        target.GetPointList()->GetAnalogPoint(host::integerTwinOf(rtu, rtu.points[1]));
    ASSERT_NE(twin, nullptr);
    EXPECT_GE(twin->number, host::firstHiddenNumber);
    EXPECT_EQ(twin->address, QStringLiteral("R100"));
    EXPECT_EQ(twin->dataType, 0U);
}

TEST_F(Records, AddHiddenPointsWithNumbersOfTheirOwn) {
    rtu.points.clear();
    for (unsigned number = 0; number < 128; ++number)
        for (const char media : {'F', 'R'}) {
            host::Point point;
            point.id = number;
            point.kind = media == 'R' ? host::PointKind::Analog : host::PointKind::Status;
            point.address = {media, number};
            rtu.points.push_back(point);
        }
    CRtu target(nullptr, nullptr, host::makeRtuRecord(rtu));
    host::addPoints(target, rtu);
    const StatusPoint* const flag = target.GetPointList()->GetStatusPoint(0x80000000U);
    const AnalogPoint* const reg = target.GetPointList()->GetAnalogPoint(0x80000001U);
    ASSERT_NE(flag, nullptr);
    ASSERT_NE(reg, nullptr);
    EXPECT_EQ(flag->firstAddress, QStringLiteral("F128"));
    EXPECT_EQ(flag->firstOutputAddress, QString());
    EXPECT_EQ(reg->address, QStringLiteral("R128"));
}
