#include "PublishingTest.h"
#include "LogRecorder.h"

#include <QDateTime>

using Halvex::PointDataType;

namespace {

using StatusPuts = std::vector<StatusPut>;
using AnalogPuts = std::vector<AnalogPut>;

} // namespace

TEST_F(PublishingTest, PutsOneValueAnInputOnceEachAsTheFirstAddress) {
    addStatus(1, "I10");
    addStatus(2, "I11");
    addStatus(3, "I12");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishStatus(10, "I", {1, 0, 1});
    EXPECT_EQ(puts.status, (StatusPuts{{1, 1, true}, {2, 0, true}, {3, 1, true}}));
    EXPECT_EQ(puts.analog, AnalogPuts{});
}

TEST_F(PublishingTest, PutsTheFirstAddressesValueTwiceWhenTheSecondHasTheSameNumber) {
    addStatus(1, "I5", "F5");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishStatus(5, "I", {1});
    EXPECT_EQ(puts.status, (StatusPuts{{1, 1, true}, {1, 1, false}}));
}

TEST_F(PublishingTest, PutsNothingForTheSecondAddressItself) {
    addStatus(1, "I5", "F5");
    addStatus(2, "I6", "I7");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishStatus(5, "F", {1});
    publishStatus(7, "I", {1});
    EXPECT_EQ(puts.status, StatusPuts{});
}

TEST_F(PublishingTest, ComparesTheSecondNumberAsText) {
    addStatus(1, "I5", "F05");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishStatus(5, "I", {1});
    EXPECT_EQ(puts.status, (StatusPuts{{1, 1, true}}));
}

TEST_F(PublishingTest, PutsForTheSecondAddressAloneWhenTheFirstHasMovedAwaySince) {
    addStatus(1, "I5", "F5");
    rtu->InitRtu();
    rtu->GetPointList()->GetStatusPoint(1)->firstAddressNumber = QStringLiteral("6");
    PutCallRecorder puts(rtu);
    publishStatus(5, "I", {1});
    EXPECT_EQ(puts.status, (StatusPuts{{1, 1, false}}));
}

TEST_F(PublishingTest, PutsAPointWithTwiceTheSameAddressTwice) {
    addStatus(1, "I5", "I5");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishStatus(5, "I", {0});
    EXPECT_EQ(puts.status, (StatusPuts{{1, 0, true}, {1, 0, false}}));
}

TEST_F(PublishingTest, PutsEveryStatusPointOfAnElementInTheOrderOfTheirNumbers) {
    addStatus(30, "F8");
    addStatus(4, "F8");
    addStatus(17, "F8", "O8");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishStatus(8, "F", {1});
    EXPECT_EQ(puts.status, (StatusPuts{{4, 1, true}, {17, 1, true}, {17, 1, false}, {30, 1, true}}));
}

TEST_F(PublishingTest, KeepsTheMediaApart) {
    addStatus(1, "I5");
    addStatus(2, "O5");
    addAnalog(3, "R5");
    addAnalog(4, "C5");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishStatus(5, "O", {1});
    publishAnalog(5, "C", {9});
    EXPECT_EQ(puts.status, (StatusPuts{{2, 1, true}}));
    EXPECT_EQ(puts.analog, (AnalogPuts{{4, 9}}));
}

TEST_F(PublishingTest, KeepsStatusAndAnalogPointsApart) {
    addStatus(1, "R5");
    addAnalog(2, "I5");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishAnalog(5, "R", {1});
    publishStatus(5, "I", {1});
    EXPECT_EQ(puts.status, StatusPuts{});
    EXPECT_EQ(puts.analog, AnalogPuts{});
}

TEST_F(PublishingTest, PutsEveryAnalogPointOfAnElementInTheOrderOfTheirNumbers) {
    addAnalog(9, "R200");
    addAnalog(2, "R200");
    addAnalog(5, "R201");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishAnalog(200, "R", {11, 22});
    EXPECT_EQ(puts.analog, (AnalogPuts{{2, 11}, {9, 11}, {5, 22}}));
}

TEST_F(PublishingTest, DropsValuesWithoutAPointAndLogsNothing) {
    addStatus(1, "I5");
    addAnalog(1, "R5");
    rtu->InitRtu();
    const LogRecorder log;
    PutCallRecorder puts(rtu);
    publishStatus(4, "I", {1, 1, 1});
    publishAnalog(4, "R", {1, 2, 3});
    publishAnalog(4, "T", {1, 2, 3});
    EXPECT_EQ(puts.status, (StatusPuts{{1, 1, true}}));
    EXPECT_EQ(puts.analog, (AnalogPuts{{1, 2}}));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(PublishingTest, PutsNoMoreThanAnAnswerThatIsShorterThanTheOneBeforeHolds) {
    addStatus(1, "F5");
    addStatus(2, "F6");
    addAnalog(3, "R5");
    addAnalog(4, "R6");
    rtu->InitRtu();
    publishStatus(5, "F", {1, 1});
    publishAnalog(5, "R", {7, 8});
    PutCallRecorder puts(rtu);
    publishStatus(5, "F", {0});
    publishAnalog(5, "R", {9});
    EXPECT_EQ(puts.status, (StatusPuts{{1, 0, true}}));
    EXPECT_EQ(puts.analog, (AnalogPuts{{3, 9}}));
}

TEST_F(PublishingTest, TakesAnEmptyListOfValues) {
    addStatus(1, "I5");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishStatus(5, "I", {});
    publishAnalog(5, "R", {});
    EXPECT_TRUE(puts.remarks.empty());
}

TEST_F(PublishingTest, FindsPointsWhoseNumbersRunAgainstTheirAddresses) {
    addStatus(1, "I7");
    addStatus(2, "I6");
    addStatus(3, "I5");
    addAnalog(4, "R7");
    addAnalog(5, "R6");
    addAnalog(6, "R5");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishStatus(5, "I", {0, 1, 0});
    publishAnalog(5, "R", {50, 60, 70});
    EXPECT_EQ(puts.status, (StatusPuts{{3, 0, true}, {2, 1, true}, {1, 0, true}}));
    EXPECT_EQ(puts.analog, (AnalogPuts{{6, 50}, {5, 60}, {4, 70}}));
}

TEST_F(PublishingTest, FindsPointsOnlyAtTheAddressesOfTheLastBuild) {
    addStatus(1, "I5");
    addAnalog(2, "R5");
    rtu->InitRtu();
    publishStatus(5, "I", {1});
    publishAnalog(5, "R", {7});
    addStatus(1, "F5");
    addAnalog(2, "C5");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishStatus(5, "I", {1});
    publishAnalog(5, "R", {7});
    EXPECT_TRUE(puts.remarks.empty());
    publishStatus(5, "F", {0});
    publishAnalog(5, "C", {8});
    EXPECT_EQ(puts.status, (StatusPuts{{1, 0, true}}));
    EXPECT_EQ(puts.analog, (AnalogPuts{{2, 8}}));
}

TEST_F(PublishingTest, PutsAValueOnceAfterSeveralBuilds) {
    addStatus(1, "I5");
    addAnalog(2, "R5");
    for (int build = 0; build < 3; ++build) {
        rtu->GetPointList()->RestoreStatusPoints();
        rtu->InitRtu();
    }
    PutCallRecorder puts(rtu);
    publishStatus(5, "I", {1});
    publishAnalog(5, "R", {7});
    EXPECT_EQ(puts.status, (StatusPuts{{1, 1, true}}));
    EXPECT_EQ(puts.analog, (AnalogPuts{{2, 7}}));
}

TEST_F(PublishingTest, StillFindsPointsAfterARebuildThatFoundNone) {
    addStatus(1, "I5");
    addAnalog(2, "R5");
    rtu->InitRtu();
    const StatusPoint status = *rtu->GetPointList()->GetStatusPoint(1);
    const AnalogPoint analog = *rtu->GetPointList()->GetAnalogPoint(2);
    rtu->GetPointList()->Clear();
    rtu->InitRtu();
    rtu->GetPointList()->AddStatusPoint(status);
    rtu->GetPointList()->AddAnalogPoint(analog);
    PutCallRecorder puts(rtu);
    publishStatus(5, "I", {1});
    publishAnalog(5, "R", {7});
    EXPECT_EQ(puts.status, (StatusPuts{{1, 1, true}}));
    EXPECT_EQ(puts.analog, (AnalogPuts{{2, 7}}));
}

TEST_F(PublishingTest, PassesOverPointsThatHaveVanished) {
    addStatus(1, "I5");
    addStatus(2, "I5");
    addAnalog(1, "R5");
    addAnalog(2, "R5");
    rtu->InitRtu();
    StatusPoint keptStatus = *rtu->GetPointList()->GetStatusPoint(2);
    AnalogPoint keptAnalog = *rtu->GetPointList()->GetAnalogPoint(2);
    rtu->GetPointList()->Clear();
    rtu->GetPointList()->AddStatusPoint(keptStatus);
    rtu->GetPointList()->AddAnalogPoint(keptAnalog);
    const LogRecorder log;
    PutCallRecorder puts(rtu);
    publishStatus(5, "I", {1});
    publishAnalog(5, "R", {1});
    EXPECT_EQ(puts.status, (StatusPuts{{2, 1, true}}));
    EXPECT_EQ(puts.analog, (AnalogPuts{{2, 1}}));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(PublishingTest, PutsAnUnchangedValueEveryTime) {
    addStatus(1, "I5");
    addAnalog(1, "R5");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    for (int repetition = 0; repetition < 3; ++repetition) {
        publishStatus(5, "I", {1});
        publishAnalog(5, "R", {7});
    }
    EXPECT_EQ(puts.status.size(), 3u);
    EXPECT_EQ(puts.analog.size(), 3u);
}

TEST_F(PublishingTest, MarksValuesAsRealWithoutARemarkAndStampedNow) {
    addStatus(1, "I5", "F5");
    addAnalog(1, "R5");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    publishStatus(5, "I", {1});
    publishAnalog(5, "R", {7});
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    ASSERT_EQ(puts.remarks.size(), 3u);
    for (const PutRemarks& put : puts.remarks) {
        EXPECT_FALSE(put.simulated);
        EXPECT_EQ(put.status, 0u);
        EXPECT_EQ(put.stamp.status(), 0);
        EXPECT_GE(put.stamp.toMSecsSinceEpoch(), before);
        EXPECT_LE(put.stamp.toMSecsSinceEpoch(), after);
    }
}

TEST_F(PublishingTest, StampsEachPutWithTheTimeAtWhichItIsMade) {
    addStatus(1, "I5", "F5");
    addStatus(2, "I6");
    for (unsigned number = 3; number <= 22; ++number)
        addAnalog(number, qPrintable(QStringLiteral("R%1").arg(number)));
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    constexpr qint64 start = 1'600'000'000'000;
    constexpr qint64 step = 20;
    BenchClock::set(start, step);
    publishStatus(5, "I", {1, 0});
    publishAnalog(3, "R", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20});
    ASSERT_EQ(puts.remarks.size(), 3u + 20u);
    for (std::size_t i = 0; i < puts.remarks.size(); ++i)
        EXPECT_EQ(puts.remarks[i].stamp.toMSecsSinceEpoch(), start + static_cast<qint64>(i) * step) << i;
}

TEST_F(PublishingTest, StampsByTheComputersClockUnlessItIsGivenAnother) {
    RemoteTerminalUnit info;
    info.id = 99;
    SBusRtu plain(&channel, &core, info);
    AnalogPoint point;
    point.number = 1;
    point.address = QStringLiteral("R5");
    plain.GetPointList()->AddAnalogPoint(point);
    plain.InitRtu();
    PutCallRecorder puts(&plain);
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    plain.publishAnalogValues(5, QStringLiteral("R"), {7});
    ASSERT_EQ(puts.remarks.size(), 1u);
    EXPECT_GE(puts.remarks[0].stamp.toMSecsSinceEpoch(), before);
    EXPECT_LE(puts.remarks[0].stamp.toMSecsSinceEpoch(), QDateTime::currentMSecsSinceEpoch());
}

TEST_F(PublishingTest, CountsElementsAsUnsigned32BitNumbers) {
    addStatus(1, "I0");
    addAnalog(1, "R0");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishStatus(0xFFFFFFFF, "I", {0, 1});
    publishAnalog(0xFFFFFFFF, "R", {5, 6});
    EXPECT_EQ(puts.status, (StatusPuts{{1, 1, true}}));
    EXPECT_EQ(puts.analog, (AnalogPuts{{1, 6}}));
}

TEST_F(PublishingTest, ReachesTheHighestAddressThatFiveDigitsCanName) {
    addStatus(1, "F99999");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishStatus(99999, "F", {1});
    EXPECT_EQ(puts.status, (StatusPuts{{1, 1, true}}));
}

TEST_F(PublishingTest, NeverReachesAPointWithDigitsOfAnotherScript) {
    addAnalog(1, "R\331\243"); // the Arabic-Indic digit 3
    addStatus(2, "I\331\243");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishAnalog(0, "R", {1, 2, 3, 4});
    publishStatus(0, "I", {1, 1, 1, 1});
    EXPECT_TRUE(puts.remarks.empty());
}

TEST_F(PublishingTest, NeverReachesAPointWithANegativeNumberField) {
    addAnalog(1, "R", "-1");
    addAnalog(2, "R0");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishAnalog(0xFFFFFFFF, "R", {5, 6});
    publishAnalog(1, "R", {7});
    EXPECT_EQ(puts.analog, (AnalogPuts{{2, 6}}));
}

TEST_F(PublishingTest, NeverReachesAPointWithLeadingZeros) {
    addAnalog(1, "R007");
    addStatus(2, "I05");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishAnalog(7, "R", {1});
    publishStatus(5, "I", {1});
    EXPECT_TRUE(puts.remarks.empty());
}

TEST_F(PublishingTest, NeverReachesAPointWhoseAddressDidNotMatch) {
    addAnalog(1, "X12.3");
    addAnalog(2, "r200", "200");
    rtu->InitRtu();
    PutCallRecorder puts(rtu);
    publishAnalog(0, "R", {1});
    publishAnalog(200, "R", {1});
    EXPECT_TRUE(puts.remarks.empty());
}

TEST_F(PublishingTest, WaitsForTheEndOfTheRequestBeforeTheHostSeesValues) {
    addStatus(1, "I5");
    addAnalog(2, "R5");
    rtu->InitRtu();
    publishStatus(5, "I", {1});
    publishAnalog(5, "R", {7});
    EXPECT_FALSE(core.point(channelId, rtuId, 1));
    EXPECT_FALSE(core.point(channelId, rtuId, 2));
    rtu->PutDatapoints();
    ASSERT_TRUE(core.point(channelId, rtuId, 1));
    ASSERT_TRUE(core.point(channelId, rtuId, 2));
    EXPECT_FALSE(core.point(channelId, rtuId, 1)->analog);
    EXPECT_EQ(core.point(channelId, rtuId, 1)->value, 1);
    EXPECT_TRUE(core.point(channelId, rtuId, 2)->analog);
    EXPECT_EQ(core.point(channelId, rtuId, 2)->value, 7);
}

TEST_F(PublishingTest, ShowsInTheRtusPointStates) {
    addStatus(1, "I5");
    addAnalog(2, "R5", "", PointDataType::Float);
    rtu->InitRtu();
    publishStatus(5, "I", {1});
    publishAnalog(5, "R", {0xC0000042});
    rtu->PutDatapoints();
    QMap<unsigned, PointUpdate> states;
    for (const PointUpdate& state : rtu->GetPointStates())
        states[state.number] = state;
    ASSERT_EQ(states.size(), 2);
    EXPECT_EQ(states[1].quality, PointQuality::Good);
    EXPECT_EQ(states[1].value, 1);
    EXPECT_EQ(states[2].quality, PointQuality::Good);
    EXPECT_EQ(states[2].value, 3.0);
}
