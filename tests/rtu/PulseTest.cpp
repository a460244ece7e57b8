#include "StatusWriteBench.h"

#include <thread>
#include <vector>

namespace {

using PulseTest = StatusWriteBench;

// The two telegrams of a release.
QList<SBusRequestItem> releaseOf(quint32 command, quint32 address) {
    return {writeItem(command, address, 0, hex("01")), writeItem(command, address, 0, hex("00"))};
}

} // namespace

TEST_F(PulseTest, APulseIsWrittenNowAndReleasedAfterItsWidth) {
    setOutputs("O12");
    makePulse(500);
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(13, 12, 0, hex("01"))}));
    EXPECT_TRUE(sendAfter(499).isEmpty());
    EXPECT_EQ(sendOnlyAfter(1).items, releaseOf(13, 12));
    EXPECT_TRUE(sendAfter(3'600'000).isEmpty()) << "released twice";
}

TEST_F(PulseTest, APulseWaitsInTheTableBeforeItsReleaseIsScheduled) {
    setOutputs("O12");
    makePulse(0);
    SBusRequest pulse;
    pulse.rtu = rtu;
    pulse.name = QStringLiteral("Status Write");
    pulse.items << writeItem(13, 12, 0, hex("01"));
    int looks = 0;
    onLookAtDelayClock = [&] {
        ++looks;
        EXPECT_TRUE(protocol->containsRequest(pulse));
    };
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(looks, 1) << "it was not scheduled";
    onLookAtDelayClock = nullptr;
}

// The delayed queue counts by the time of day, and takes a step of more than half a day for a clock that was
// set.
TEST_F(PulseTest, APulseMayBeAsWideAsAnUnsignedNumberGoes) {
    constexpr int step = 10 * 3'600'000;
    constexpr int day = 24 * 3'600'000;
    const auto passTime = [this](quint32 milliseconds) {
        QList<SentRequest> sent;
        while (milliseconds > 0) {
            const quint32 passing = qMin(milliseconds, quint32{step});
            milliseconds -= passing;
            now = (now + static_cast<int>(passing)) % day;
            sent << sendAfter(0);
        }
        return sent;
    };
    setOutputs("O12");
    for (const quint32 width : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        makePulse(width);
        EXPECT_EQ(write(on), accepted);
        EXPECT_EQ(sendAfter(0).size(), 1) << width << ": the pulse itself alone";
        EXPECT_TRUE(passTime(width - 1).isEmpty()) << width;
        EXPECT_EQ(passTime(1).size(), 1) << width;
    }
}

TEST_F(PulseTest, AReleaseIsLabelledStatusWriteAndHasNoReply) {
    setOutputs("O12");
    makePulse(500);
    const int before = CReply::liveCount();
    auto* reply = new CReply(&channel);
    EXPECT_EQ(write(on, reply), accepted);
    EXPECT_EQ(sendOnlyRequest().reply, reply);
    EXPECT_EQ(reply->wait(10'000), Halvex::DriverErrorResult::Success);
    EXPECT_EQ(CReply::liveCount(), before);
    const SentRequest released = sendOnlyAfter(500);
    EXPECT_EQ(released.name, QStringLiteral("Status Write"));
    EXPECT_EQ(released.rtu, rtu);
    EXPECT_EQ(released.reply, nullptr);
}

TEST_F(PulseTest, AReleaseGoesWhereThePulseWent) {
    setOutputs("O12", "", "F13");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(11, 13, 0, hex("01"))}));
    EXPECT_EQ(sendOnlyAfter(100).items, releaseOf(11, 13));
}

TEST_F(PulseTest, AReleaseHasTheCommandOfEachMedia) {
    const std::pair<const char*, quint32> rows[] = {{"C3", 10}, {"F3", 11}, {"O3", 13},
                                                    {"R3", 14}, {"T3", 15}, {"I3", 0}};
    for (const auto& [address, code] : rows) {
        setOutputs(address);
        makePulse(100);
        EXPECT_EQ(write(on), accepted);
        EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(code, 3, 0, hex("01"))})) << address;
        EXPECT_EQ(sendOnlyAfter(100).items, releaseOf(code, 3)) << address;
    }
}

TEST_F(PulseTest, APulseOfNoWidthIsReleasedWithTheNextLookAtWhatIsDue) {
    setOutputs("O12");
    makePulse(0);
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendPending().size(), 1) << "released before anything fell due";
    EXPECT_EQ(sendOnlyAfter(0).items, releaseOf(13, 12));
}

TEST_F(PulseTest, TheWidthCountsFromTheCommand) {
    setOutputs("O12");
    makePulse(500);
    now = 7'000;
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendAfter(499).size(), 1) << "the pulse itself alone";
    EXPECT_EQ(sendAfter(1).size(), 1);
}

TEST_F(PulseTest, OnlyAValueOfExactlyOneIsReleased) {
    makePulse(0);
    for (const char* value : {"0", "2", "3", "128", "129", "255", "256", "-1", "on"}) {
        setOutputs("O12", value);
        EXPECT_EQ(write(on), accepted);
        EXPECT_EQ(sendPending().size(), 1) << value;
        EXPECT_TRUE(sendAfter(0).isEmpty()) << value;
    }
    for (const char* value : {"", "1", "257", "-255"}) {
        setOutputs("O12", value);
        EXPECT_EQ(write(on), accepted);
        EXPECT_EQ(sendPending().size(), 1) << value;
        EXPECT_EQ(sendOnlyAfter(0).items, releaseOf(13, 12)) << value;
    }
}

TEST_F(PulseTest, APulsePointThatIsSwitchedOffIsNotReleased) {
    setOutputs("O12");
    makePulse(0);
    EXPECT_EQ(write(off), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(13, 12, 0, hex("00"))}));
    EXPECT_TRUE(sendAfter(3'600'000).isEmpty());
}

TEST_F(PulseTest, APulsePointWhoseOffValueIsOneIsReleasedAfterItsOff) {
    setOutputs("O12", "1");
    makePulse(50);
    EXPECT_EQ(write(off), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(13, 12, 0, hex("01"))}));
    EXPECT_EQ(sendOnlyAfter(50).items, releaseOf(13, 12));
}

TEST_F(PulseTest, APointThatIsNoPulseIsNotReleasedWhateverItsWidth) {
    setOutputs("O12");
    output->pulse = false;
    output->pulseWidthMs = 10;
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendPending().size(), 1);
    EXPECT_TRUE(sendAfter(3'600'000).isEmpty());
}

TEST_F(PulseTest, APulseWithoutADelayedQueueIsJustWritten) {
    setOutputs("O12");
    makePulse(0);
    rtu->attachProtocol(protocol, nullptr);
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(13, 12, 0, hex("01"))}));
    EXPECT_TRUE(sendAfter(3'600'000).isEmpty());
}

TEST_F(PulseTest, AReleaseQueuesBehindWhatWaitsLikeAPoll) {
    addAnalog(1, "R1");
    setOutputs("O12");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    sendPending();
    EXPECT_EQ(request(Halvex::PollKind::Analog), accepted);
    now += 100;
    releases.dispatchDue();
    EXPECT_EQ(namesSent(), (QStringList{"analog poll", "Status Write"}));
}

TEST_F(PulseTest, AReleaseIsDroppedWhileAnotherOneOfItsRtuWaits) {
    addStatus(21, "");
    StatusPoint* const other = rtu->GetPointList()->GetStatusPoint(21);
    other->firstOutputAddress = QStringLiteral("O13");
    other->pulse = true;
    other->pulseWidthMs = 100;
    setOutputs("O12");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    sendPending();
    EXPECT_EQ(rtu->statusWrite(21, on, nullptr), accepted);
    sendPending();
    EXPECT_EQ(sendOnlyAfter(100).items, releaseOf(13, 12));
}

TEST_F(PulseTest, AReleaseIsNoDuplicateOfACommandThatWaits) {
    setOutputs("O12");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    const QList<SentRequest> sent = sendAfter(100);
    ASSERT_EQ(sent.size(), 2) << "one telegram against two";
    EXPECT_EQ(sent[0].items, (QList{writeItem(13, 12, 0, hex("01"))}));
    EXPECT_EQ(sent[1].items, releaseOf(13, 12));
}

TEST_F(PulseTest, AReleaseThatFallsDueWithoutALinkIsDroppedWithoutAWord) {
    setOutputs("O12");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    sendPending();
    log.clear();
    protocol->setLink(nullptr);
    EXPECT_TRUE(sendAfter(100).isEmpty());
    protocol->setLink(&link);
    EXPECT_TRUE(sendAfter(100).isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(PulseTest, AReleaseIsScheduledEvenWhenThePulseItselfFoundNoLink) {
    setOutputs("O12");
    makePulse(100);
    protocol->setLink(nullptr);
    EXPECT_EQ(write(on), accepted);
    protocol->setLink(&link);
    EXPECT_EQ(sendOnlyAfter(100).items, releaseOf(13, 12));
}

TEST_F(PulseTest, AReleaseKeepsTheAddressThatThePointHadAtTheCommand) {
    setOutputs("O12");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    sendPending();
    setOutputs("O99");
    EXPECT_EQ(sendOnlyAfter(100).items, releaseOf(13, 12));
}

TEST_F(PulseTest, EachPulseIsReleasedAfterItsOwnWidth) {
    setOutputs("O12");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    sendPending();
    now += 60;
    EXPECT_EQ(write(on), accepted);
    sendPending();
    EXPECT_EQ(sendAfter(40).size(), 1);
    EXPECT_TRUE(sendAfter(59).isEmpty());
    EXPECT_EQ(sendAfter(1).size(), 1);
}

TEST_F(PulseTest, PulsesGivenOnManyThreadsAreAllReleased) {
    constexpr unsigned threadCount = 4;
    constexpr unsigned pulsesEach = 50;
    constexpr unsigned firstPoint = 1'000;
    // Each pulse with a width of its own: releases that wait together would displace each other.
    for (unsigned i = 0; i < threadCount * pulsesEach; ++i) {
        StatusPoint* const point = addStatus(firstPoint + i, "");
        point->firstOutputAddress = QStringLiteral("O%1").arg(i);
        point->pulse = true;
        point->pulseWidthMs = i + 1;
    }
    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < threadCount; ++thread)
        threads.emplace_back([this, thread] {
            for (unsigned i = thread * pulsesEach; i < (thread + 1) * pulsesEach; ++i)
                EXPECT_EQ(rtu->statusWrite(firstPoint + i, on, nullptr), accepted);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(sendPending().size(), 1) << "the pulses displace each other";
    for (unsigned i = 0; i < threadCount * pulsesEach; ++i) {
        EXPECT_EQ(sendOnlyAfter(1).items, releaseOf(13, i));
    }
}
