#include "RtuBench.h"

#include <QStringList>

using Halvex::PollKind;

namespace {

class PollTest : public RtuBench {
protected:
    // Labels of the requests that reached the wire, one a telegram.
    QStringList polls() const {
        QStringList names;
        for (const RecordingProtocol::Exchange& exchange : protocol->exchanges)
            names << exchange.poll;
        return names;
    }
};

using Items = QList<SBusRequestItem>;

} // namespace

TEST_F(PollTest, KindsZeroOneAndTwoAreTheIntegrityTheStatusAndTheAnalogPoll) {
    addAnalog(1, "R1");
    addStatus(1, "I1");
    EXPECT_EQ(rtu->RequestPoll(0, nullptr), 0);
    EXPECT_EQ(rtu->RequestPoll(1, nullptr), 0);
    EXPECT_EQ(rtu->RequestPoll(2, nullptr), 0);
    runPending();
    EXPECT_EQ(polls(), (QStringList{"Integrity poll", "Integrity poll", "status poll", "analog poll"}));
    for (const RecordingProtocol::Exchange& exchange : protocol->exchanges)
        EXPECT_EQ(exchange.rtu, rtu);
    EXPECT_EQ(endedRequests(), 3u);
}

TEST_F(PollTest, OfAnalogPointsAloneHasAnEmptyStatusPollAndAnIntegrityPollLikeTheAnalogOne) {
    addAnalog(1, "R200");
    addAnalog(2, "T5");
    EXPECT_EQ(telegramsOf(PollKind::Status), Items{});
    EXPECT_EQ(endedRequests(), 1u) << "the empty poll was not queued";
    const Items analog = telegramsOf(PollKind::Analog);
    EXPECT_EQ(analog, (Items{readItem(6, 200, 0), readItem(7, 5, 0)}));
    EXPECT_EQ(telegramsOf(PollKind::Integrity), analog);
}

TEST_F(PollTest, WithoutTelegramsSucceedsAndCompletesItsReply) {
    addAnalog(1, "R200");
    auto* reply = new CReply(&channel);
    EXPECT_EQ(request(PollKind::Status, reply), 0);
    runPending();
    EXPECT_TRUE(protocol->exchanges.isEmpty());
    EXPECT_EQ(reply->wait(10'000), Halvex::DriverErrorResult::Success);
}

TEST_F(PollTest, OfStatusPointsAloneHasAnEmptyAnalogPollAndAnIntegrityPollLikeTheStatusOne) {
    addStatus(1, "I10");
    EXPECT_EQ(telegramsOf(PollKind::Analog), Items{});
    EXPECT_EQ(endedRequests(), 1u) << "the empty poll was not queued";
    const Items status = telegramsOf(PollKind::Status);
    EXPECT_EQ(status, (Items{readItem(3, 10, 0)}));
    EXPECT_EQ(telegramsOf(PollKind::Integrity), status);
}

TEST_F(PollTest, OfAnRtuWithoutPointsQueuesNothing) {
    rtu->InitRtu();
    EXPECT_EQ(telegramsOf(PollKind::Analog), Items{});
    EXPECT_EQ(telegramsOf(PollKind::Status), Items{});
    EXPECT_EQ(telegramsOf(PollKind::Integrity), Items{});
    EXPECT_EQ(endedRequests(), 0u);
}

TEST_F(PollTest, OfAnRtuThatGetsItsFirstPointsLaterIsBuiltThen) {
    EXPECT_EQ(telegramsOf(PollKind::Analog), Items{});
    addAnalog(1, "R1");
    EXPECT_EQ(telegramsOf(PollKind::Analog), (Items{readItem(6, 1, 0)}));
}

TEST_F(PollTest, IsDroppedWhileTheFirstOneOfItsKindIsPending) {
    addStatus(1, "I1");
    EXPECT_EQ(request(PollKind::Status), 0);
    EXPECT_EQ(request(PollKind::Status), 0);
    runPending();
    EXPECT_EQ(protocol->exchanges.size(), 1);
    EXPECT_EQ(telegramsOf(PollKind::Status), (Items{readItem(3, 1, 0)})) << "no longer pending";
}

TEST_F(PollTest, GoesOnWithTheOldTelegramsWhenARebuildFindsNoPointsAnyMore) {
    addAnalog(1, "R200");
    addStatus(1, "I1");
    rtu->InitRtu();
    rtu->GetPointList()->Clear();
    rtu->InitRtu();
    EXPECT_EQ(telegramsOf(PollKind::Analog), (Items{readItem(6, 200, 0)}));
    EXPECT_EQ(telegramsOf(PollKind::Status), (Items{readItem(3, 1, 0)}));
    EXPECT_EQ(telegramsOf(PollKind::Integrity), (Items{readItem(3, 1, 0), readItem(6, 200, 0)}));
}

TEST_F(PollTest, LooksForPointsAgainAtEachRequestAfterARebuildFoundNone) {
    addAnalog(1, "R200");
    rtu->InitRtu();
    rtu->GetPointList()->Clear();
    rtu->InitRtu();
    EXPECT_EQ(telegramsOf(PollKind::Analog), (Items{readItem(6, 200, 0)}));
    addAnalog(1, "R7");
    EXPECT_EQ(telegramsOf(PollKind::Analog), (Items{readItem(6, 7, 0)}));
}

TEST_F(PollTest, ReadsAnAddressOfTwoPointsOnceForBoth) {
    addAnalog(4, "R200");
    addAnalog(9, "R200");
    protocol->payload = QByteArray::fromHex("00000100");
    EXPECT_EQ(telegramsOf(PollKind::Analog), (Items{readItem(6, 200, 0)}));
    for (unsigned number : {4u, 9u}) {
        const auto point = core.point(channelId, rtuId, number);
        ASSERT_TRUE(point) << number;
        EXPECT_EQ(point->value, 256) << number;
        EXPECT_EQ(point->quality, PointQuality::Good) << number;
    }
}

TEST_F(PollTest, ReadsBothAddressesOfAStatusPointInOneTelegram) {
    addStatus(1, "I1", "I2");
    EXPECT_EQ(telegramsOf(PollKind::Status), (Items{readItem(3, 1, 1)}));
}

TEST_F(PollTest, FindsAStatusPointUnderItsFirstAddressAlone) {
    addStatus(1, "I1", "I2");
    rtu->InitRtu();
    rtu->publishStatusValues(2, QStringLiteral("I"), {1});
    rtu->PutDatapoints();
    EXPECT_FALSE(core.point(channelId, rtuId, 1));
    rtu->publishStatusValues(1, QStringLiteral("I"), {1});
    rtu->PutDatapoints();
    EXPECT_TRUE(core.point(channelId, rtuId, 1));
}

TEST_F(PollTest, ReadsTheMediaInAscendingOrderOfTheirLetters) {
    addAnalog(1, "T1");
    addAnalog(2, "R1");
    addAnalog(3, "C1");
    addStatus(1, "O1");
    addStatus(2, "I1");
    addStatus(3, "F1");
    EXPECT_EQ(telegramsOf(PollKind::Analog),
              (Items{readItem(0, 1, 0), readItem(6, 1, 0), readItem(7, 1, 0)}));
    EXPECT_EQ(telegramsOf(PollKind::Status),
              (Items{readItem(2, 1, 0), readItem(3, 1, 0), readItem(5, 1, 0)}));
}

TEST_F(PollTest, OfIntegrityReadsTheStatusMediaBeforeTheAnalogOnes) {
    addAnalog(1, "C1");
    addStatus(1, "O1");
    EXPECT_EQ(telegramsOf(PollKind::Integrity), (Items{readItem(5, 1, 0), readItem(0, 1, 0)}));
}

TEST_F(PollTest, ReadsTheElementsOfAMediaInAscendingOrderWhateverThePointNumbers) {
    addAnalog(1, "R300");
    addAnalog(2, "R11");
    addAnalog(3, "R10");
    addAnalog(4, "R9");
    EXPECT_EQ(telegramsOf(PollKind::Analog), (Items{readItem(6, 9, 2), readItem(6, 300, 0)}));
}

TEST_F(PollTest, CutsTelegramsAtTheLimitOfTheMedia) {
    for (unsigned number = 0; number <= 40; ++number)
        addAnalog(number + 1, qPrintable(QStringLiteral("C%1").arg(number)));
    EXPECT_EQ(telegramsOf(PollKind::Analog), (Items{readItem(0, 0, 30), readItem(0, 31, 9)}));
}

TEST_F(PollTest, SendsTheSameTelegramsEveryTime) {
    addAnalog(1, "R1");
    addStatus(1, "I1", "F2");
    const Items first = telegramsOf(PollKind::Integrity);
    EXPECT_EQ(first, (Items{readItem(2, 2, 0), readItem(3, 1, 0), readItem(6, 1, 0)}));
    for (int repetition = 0; repetition < 3; ++repetition)
        EXPECT_EQ(telegramsOf(PollKind::Integrity), first);
}

TEST_F(PollTest, DoesNotSeeNewPointsBeforeARebuild) {
    addAnalog(1, "R1");
    rtu->InitRtu();
    addAnalog(2, "R50");
    addStatus(1, "I1");
    EXPECT_EQ(telegramsOf(PollKind::Integrity), (Items{readItem(6, 1, 0)}));
    rtu->InitRtu();
    EXPECT_EQ(telegramsOf(PollKind::Integrity),
              (Items{readItem(3, 1, 0), readItem(6, 1, 0), readItem(6, 50, 0)}));
}

TEST_F(PollTest, LosesStatusPointsButNoAnalogOnesInARebuildOfSplitRecords) {
    addAnalog(1, "R1");
    addStatus(1, "I1", "F2");
    rtu->InitRtu();
    rtu->InitRtu();
    EXPECT_EQ(telegramsOf(PollKind::Analog), (Items{readItem(6, 1, 0)}));
    EXPECT_EQ(telegramsOf(PollKind::Status), Items{});
    EXPECT_EQ(telegramsOf(PollKind::Integrity), (Items{readItem(6, 1, 0)}));
}

TEST_F(PollTest, StillFindsTheStatusPointsThatARebuildLost) {
    addStatus(1, "I1");
    rtu->InitRtu();
    rtu->InitRtu();
    rtu->publishStatusValues(1, QStringLiteral("I"), {1});
    rtu->PutDatapoints();
    EXPECT_TRUE(core.point(channelId, rtuId, 1));
}

TEST_F(PollTest, ReadsStatusPointsAgainFromFreshRecords) {
    addStatus(1, "I1", "F2");
    rtu->InitRtu();
    rtu->GetPointList()->RestoreStatusPoints();
    rtu->InitRtu();
    EXPECT_EQ(telegramsOf(PollKind::Status), (Items{readItem(2, 2, 0), readItem(3, 1, 0)}));
}

TEST_F(PollTest, PassesOverMalformedStatusAddresses) {
    addStatus(1, "i5", "F10");
    addStatus(2, "X12.3");
    addStatus(3, "", "");
    EXPECT_EQ(telegramsOf(PollKind::Status), (Items{readItem(2, 10, 0)}));
}

TEST_F(PollTest, TakesTheBlanksOutOfStatusAddresses) {
    addStatus(1, "I 1 0");
    EXPECT_EQ(telegramsOf(PollKind::Status), (Items{readItem(3, 10, 0)}));
}

TEST_F(PollTest, ReadsAnUnmatchedAnalogAddressAsARegisterOfItsNumberField) {
    addAnalog(1, "X12.3");
    addAnalog(2, "r200", "17");
    addAnalog(3, "R5");
    // "R", "X12.3", "r200": upper case sorts first.
    EXPECT_EQ(telegramsOf(PollKind::Analog),
              (Items{readItem(6, 5, 0), readItem(6, 0, 0), readItem(6, 17, 0)}));
}

TEST_F(PollTest, ReadsANegativeNumberFieldAtTheUnsignedNumberOfTheSameBits) {
    addAnalog(1, "R", "-5");
    addAnalog(2, "R", "-1");
    addAnalog(3, "R0");
    EXPECT_EQ(telegramsOf(PollKind::Analog),
              (Items{readItem(6, 4'294'967'291u, 0), readItem(6, 4'294'967'295u, 1)}));
}

TEST_F(PollTest, ReadsDigitsOfAnotherScriptAsElementZero) {
    addAnalog(1, "R\331\243\331\244"); // the Arabic-Indic digits 3 and 4
    addStatus(2, "I\331\243");
    EXPECT_EQ(telegramsOf(PollKind::Analog), (Items{readItem(6, 0, 0)}));
    EXPECT_EQ(telegramsOf(PollKind::Status), (Items{readItem(3, 0, 0)}));
    EXPECT_EQ(rtu->GetPointList()->GetAnalogPoint(1)->address, QStringLiteral("R"));
}

TEST_F(PollTest, GivesTheAnswerOfAnUnmatchedAddressToTheRegisterWithThatNumber) {
    addAnalog(1, "X12.3");
    addAnalog(2, "R0");
    rtu->InitRtu();
    rtu->publishAnalogValues(0, QStringLiteral("R"), {42});
    rtu->PutDatapoints();
    EXPECT_FALSE(core.point(channelId, rtuId, 1));
    ASSERT_TRUE(core.point(channelId, rtuId, 2));
    EXPECT_EQ(core.point(channelId, rtuId, 2)->value, 42);
}

TEST_F(PollTest, ReadsAnAddressWithLeadingZerosWithoutEverReachingItsPoint) {
    addAnalog(1, "R007");
    EXPECT_EQ(telegramsOf(PollKind::Analog), (Items{readItem(6, 7, 0)}));
    EXPECT_FALSE(core.point(channelId, rtuId, 1));
}

TEST_F(PollTest, ReadsTwoWritingsOfOneElementOnce) {
    addAnalog(1, "R007");
    addAnalog(2, "R7");
    EXPECT_EQ(telegramsOf(PollKind::Analog), (Items{readItem(6, 7, 0)}));
    EXPECT_FALSE(core.point(channelId, rtuId, 1));
    EXPECT_TRUE(core.point(channelId, rtuId, 2));
}

TEST_F(PollTest, PublishesAllItsValuesTogether) {
    addAnalog(1, "R1");
    addAnalog(2, "R50");
    addStatus(3, "I1");
    telegramsOf(PollKind::Integrity);
    int updates = 0;
    int publicationsWithPoints = 0;
    for (const RecordingCore::Publication& publication : core.publications()) {
        updates += publication.updates.size();
        publicationsWithPoints += publication.updates.isEmpty() ? 0 : 1;
    }
    EXPECT_EQ(updates, 3);
    EXPECT_EQ(publicationsWithPoints, 1);
}

TEST_F(PollTest, ThatFailsPublishesNothing) {
    addAnalog(1, "R1");
    protocol->outcome = SBusTimeOut;
    telegramsOf(PollKind::Analog);
    const auto point = core.point(channelId, rtuId, 1);
    EXPECT_TRUE(!point || point->quality != PointQuality::Good);
}
