#include "services/console/Summary.h"
#include "SmallSite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::ExitStatus;
using host::RtuOutcome;

namespace {

class Summary : public testing::Test {
protected:
    RtuOutcome outcome(bool connected, quint64 answers) {
        RtuOutcome result;
        result.figures.channel = &site.channels[0];
        result.figures.rtu = &site.channels[0].rtus[0];
        result.figures.status.connected = connected;
        result.figures.status.answers = answers;
        return result;
    }

    RtuOutcome refused(bool connected, quint64 answers) {
        RtuOutcome result = outcome(connected, answers);
        result.figures.wasRefused = true;
        result.neverReadPoints = 1;
        return result;
    }

    host::Site site = smallSite();
};

} // namespace

TEST_F(Summary, IsGoodWhenEveryRtuAnsweredAndIsConnected) {
    EXPECT_EQ(host::judge({outcome(true, 3), outcome(true, 1)}), ExitStatus::Good);
}

TEST_F(Summary, HasFailedWhenAnRtuNeverAnsweredOrIsGone) {
    EXPECT_EQ(host::judge({outcome(true, 3), outcome(true, 0)}), ExitStatus::CommunicationFailed);
    EXPECT_EQ(host::judge({outcome(false, 3), outcome(true, 3)}), ExitStatus::CommunicationFailed);
}

TEST_F(Summary, IsRefusedWhenRefusalsAreAllThatCame) {
    EXPECT_EQ(host::judge({outcome(true, 3), refused(false, 0)}), ExitStatus::Refused);
    EXPECT_EQ(host::judge({refused(false, 0), outcome(false, 0)}), ExitStatus::CommunicationFailed);
}

TEST_F(Summary, IsRefusedWhenOneKindOfPollIsAnsweredAndAnotherRefused) {
    RtuOutcome partly = refused(true, 5);
    EXPECT_EQ(host::judge({partly}), ExitStatus::Refused);
    partly.figures.status.connected = false; // the refusal came last
    EXPECT_EQ(host::judge({partly}), ExitStatus::Refused);
    partly.neverReadPoints = 0;
    partly.badPoints = 1;
    EXPECT_EQ(host::judge({partly}), ExitStatus::Refused);
}

TEST_F(Summary, IsGoodWhenEveryPointWasReadAfterARefusal) {
    RtuOutcome recovered = refused(true, 5);
    recovered.neverReadPoints = 0;
    EXPECT_EQ(host::judge({recovered}), ExitStatus::Good);
}

TEST_F(Summary, IsRefusedWhenSinglePointsAre) {
    RtuOutcome partly = outcome(true, 5);
    partly.refusedPoints = 1;
    EXPECT_EQ(host::judge({partly}), ExitStatus::Refused);
    partly.figures.status.connected = false; // and then it fell silent
    EXPECT_EQ(host::judge({partly}), ExitStatus::CommunicationFailed);
}

TEST_F(Summary, LeavesRtusOutThatNobodyPolls) {
    site.channels[0].rtus[0].enabled = false;
    EXPECT_EQ(host::judge({outcome(false, 0)}), ExitStatus::Good);
    site.channels[0].rtus[0].enabled = true;
    site.channels[0].rtus[0].points.clear();
    EXPECT_EQ(host::judge({outcome(false, 0)}), ExitStatus::Good);
}

TEST_F(Summary, CountsPointsByQuality) {
    host::ValueStore store(site);
    store.publishPoints(
        4, 7,
        {PointUpdate{false, 0, 1, {}, PointQuality::Good}, PointUpdate{true, 1, 1, {}, PointQuality::Good}});
    store.publishPoints(4, 7, {PointUpdate{true, 1, 1, {}, PointQuality::Bad}});
    const auto outcomes = host::collectOutcomes({outcome(true, 1).figures}, store);
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(outcomes[0].goodPoints, 1U);
    EXPECT_EQ(outcomes[0].badPoints, 1U);
    EXPECT_EQ(outcomes[0].neverReadPoints, 1U);
}

TEST_F(Summary, ShowsALinePerRtu) {
    RtuOutcome one = outcome(true, 3);
    one.figures.status.requests = 4;
    one.figures.status.timeOuts = 1;
    one.figures.status.slowestRoundTrip = std::chrono::microseconds(12'340);
    one.goodPoints = 3;
    EXPECT_EQ(host::summaryText({one}, {{&site.channels[0], {}}}),
              "RTU         requests  answers  time-outs  errors     last   slowest  good  bad  never read\n"
              "pump-house         4        3          1       0  0.00 ms  12.34 ms     3    0           0\n");
}

TEST_F(Summary, HasAColumnOfRefusedPointsWhereThereAreAny) {
    RtuOutcome one = outcome(true, 3);
    one.refusedPoints = 2;
    EXPECT_THAT(host::summaryText({one}, {}), testing::HasSubstr("  never read  refused\n"));
    EXPECT_THAT(host::summaryText({one}, {}), testing::EndsWith("           0        2\n"));
}

TEST_F(Summary, ShowsALineForAChannelInTrouble) {
    ChannelStatus status;
    status.failedOpens = 2;
    status.scanOverruns = 1;
    EXPECT_THAT(host::summaryText({}, {{&site.channels[0], status}}),
                testing::EndsWith("\nwaterworks  udp://127.0.0.1:9  2 failed opens  1 scan overrun\n"));
}
