#include "EngineTest.h"

#include <SBusDelayedQueue.h>

#include <atomic>

namespace {

constexpr int day = 86'400'000; // milliseconds

class DelayedQueueTest : public EngineTest {
protected:
    DelayedQueueTest() { queue.setProtocol(protocol); }

    // What a dispatch at `time` hands on.
    QStringList dispatchAt(int time) {
        timeOfDay = time;
        queue.dispatchDue();
        return pendingInOrder();
    }

    // Lets both clocks go on.
    void goOn(qint64 milliseconds) {
        steadyTime += milliseconds;
        timeOfDay = static_cast<int>(steadyTime % day);
    }

    QStringList dispatchAfter(qint64 milliseconds) {
        goOn(milliseconds);
        queue.dispatchDue();
        return pendingInOrder();
    }

    int timeOfDay = 0;
    qint64 steadyTime = 0;
    int readings = 0;
    SBusDelayedQueue queue{[this] {
                               ++readings;
                               return timeOfDay;
                           },
                           [this] { return steadyTime; }};
};

} // namespace

TEST_F(DelayedQueueTest, DelayZeroIsDueAtTheNextDispatch) {
    queue.schedule(0, request("release"));
    EXPECT_EQ(dispatchAt(0), QStringList{"release"});
}

TEST_F(DelayedQueueTest, IsDueWhenItsTimeEqualsNow) {
    queue.schedule(500, request("release"));
    EXPECT_EQ(dispatchAt(499), QStringList{});
    EXPECT_EQ(dispatchAt(500), QStringList{"release"});
}

TEST_F(DelayedQueueTest, IsStillDueWhenItsTimeIsLongPast) {
    queue.schedule(500, request("release"));
    EXPECT_EQ(dispatchAt(60'000), QStringList{"release"});
}

TEST_F(DelayedQueueTest, TheDelayCountsFromTheMomentOfScheduling) {
    timeOfDay = 1'000;
    queue.schedule(500, request("release"));
    EXPECT_EQ(dispatchAt(1'499), QStringList{});
    EXPECT_EQ(dispatchAt(1'500), QStringList{"release"});
}

TEST_F(DelayedQueueTest, IsHandedOnOnce) {
    queue.schedule(0, request("release"));
    EXPECT_EQ(dispatchAt(0), QStringList{"release"});
    EXPECT_EQ(dispatchAt(1), QStringList{});
}

TEST_F(DelayedQueueTest, WhatIsDueKeepsTheOrderOfScheduling) {
    queue.schedule(300, request("first"));
    queue.schedule(100, request("second"));
    queue.schedule(200, request("third"));
    EXPECT_EQ(dispatchAt(300), (QStringList{"first", "second", "third"}));
}

TEST_F(DelayedQueueTest, WhatIsNotDueStaysInOrder) {
    queue.schedule(300, request("first"));
    queue.schedule(100, request("second"));
    queue.schedule(300, request("third"));
    EXPECT_EQ(dispatchAt(100), QStringList{"second"});
    EXPECT_EQ(dispatchAt(300), (QStringList{"first", "third"}));
}

TEST_F(DelayedQueueTest, KeepsAllEntriesWithoutAProtocol) {
    queue.setProtocol(nullptr);
    queue.schedule(0, request("first"));
    queue.schedule(0, request("second"));
    EXPECT_EQ(dispatchAt(10), QStringList{});
    queue.setProtocol(protocol);
    EXPECT_EQ(dispatchAt(20), (QStringList{"first", "second"}));
}

TEST_F(DelayedQueueTest, HasNoProtocolUntilOneIsSet) {
    SBusDelayedQueue fresh([] { return 0; });
    fresh.schedule(0, request("release"));
    fresh.dispatchDue();
    fresh.setProtocol(protocol);
    fresh.dispatchDue();
    EXPECT_EQ(pendingInOrder(), QStringList{"release"});
}

TEST_F(DelayedQueueTest, KeepsACopy) {
    SBusRequest release = request("release", {write(1)});
    queue.schedule(0, release);
    release.name = "renamed";
    release.items[0].address = 2;
    EXPECT_EQ(dispatchAt(0), QStringList{"release"});
    EXPECT_TRUE(protocol->steps.contains("build w14@1 station 5"));
}

TEST_F(DelayedQueueTest, WhatIsDueQueuesBehindTheCommandsLikeAPoll) {
    queue.schedule(0, request("release"));
    protocol->queueRequest(request("poll"));
    queue.dispatchDue();
    protocol->submitRequest(request("command"));
    EXPECT_EQ(pendingInOrder(), (QStringList{"command", "poll", "release"}));
}

TEST_F(DelayedQueueTest, WhatIsDueIsDroppedWhenAnEqualRequestIsPending) {
    protocol->submitRequest(request("release", {write(1)}));
    queue.schedule(0, request("release", {write(2)}));
    EXPECT_EQ(dispatchAt(0), QStringList{"release"});
    EXPECT_TRUE(protocol->steps.contains("build w14@1 station 5"));
    EXPECT_EQ(dispatchAt(10), QStringList{});
}

TEST_F(DelayedQueueTest, WhatFallsDueWhileOfflineIsDropped) {
    queue.schedule(0, request("release"));
    protocol->setLink(nullptr);
    queue.dispatchDue();
    protocol->setLink(link);
    EXPECT_EQ(dispatchAt(10), QStringList{});
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(DelayedQueueTest, AnEmptyQueueIsLeftWithoutAReadingOfTheClock) {
    readings = 0;
    queue.dispatchDue();
    EXPECT_EQ(readings, 0);
}

TEST_F(DelayedQueueTest, TheClockIsReadOnceADispatch) {
    for (unsigned delay = 0; delay < 5; ++delay)
        queue.schedule(delay * 100, request(QString::number(delay)));
    readings = 0;
    queue.dispatchDue();
    EXPECT_EQ(readings, 1);
}

TEST_F(DelayedQueueTest, AQueueThatHasBeenEmptiedIsLeftWithoutAReadingOfTheClock) {
    queue.schedule(0, request("release"));
    EXPECT_EQ(dispatchAt(0), QStringList{"release"});
    readings = 0;
    queue.dispatchDue();
    EXPECT_EQ(readings, 0);
}

TEST_F(DelayedQueueTest, AnEmptyQueueIsLeftWithoutItsLockAlsoOnceItHasBeenEmptied) {
    // Scheduling reads the clock with the queue's lock held: a dispatch from there that wants the lock hangs.
    SBusDelayedQueue* self = nullptr;
    int dispatches = 0;
    SBusDelayedQueue nested([&] {
        if (self != nullptr) {
            ++dispatches;
            self->dispatchDue();
        }
        return 0;
    });
    nested.setProtocol(protocol);
    for (int round = 1; round <= 2; ++round) {
        self = &nested;
        expectNoDeadlock([&] { nested.schedule(0, request("release")); });
        EXPECT_EQ(dispatches, round);
        self = nullptr;
        nested.dispatchDue();
        EXPECT_EQ(pendingInOrder(), QStringList{"release"});
    }
}

TEST_F(DelayedQueueTest, AReleaseScheduledBeforeTheDaysEndFallsDueAfterIt) {
    timeOfDay = day - 1'000;
    SBusDelayedQueue late([this] { return timeOfDay; });
    late.setProtocol(protocol);
    late.schedule(3'000, request("release"));
    for (const int time : {day - 1, 0, 1'999}) {
        timeOfDay = time;
        late.dispatchDue();
        EXPECT_EQ(pendingInOrder(), QStringList{}) << time;
    }
    timeOfDay = 2'000;
    late.dispatchDue();
    EXPECT_EQ(pendingInOrder(), QStringList{"release"});
}

TEST_F(DelayedQueueTest, AReleaseScheduledLongAfterTheLastOneIsTimedFromItsOwnMoment) {
    queue.schedule(0, request("first"));
    EXPECT_EQ(dispatchAt(0), QStringList{"first"});
    // Nothing was pending meanwhile, for an unknown number of days.
    timeOfDay = 5'000;
    queue.schedule(2'000, request("second"));
    EXPECT_EQ(dispatchAt(6'999), QStringList{});
    EXPECT_EQ(dispatchAt(7'000), QStringList{"second"});
}

TEST_F(DelayedQueueTest, EveryReleaseOfAHundredDaysIsOnTimeAroundMidnightToo) {
    for (int days = 1; days <= 100; ++days) {
        timeOfDay = day - 1'000;
        queue.schedule(2'000, request("release"));
        ASSERT_EQ(dispatchAt(999), QStringList{}) << days;
        ASSERT_EQ(dispatchAt(1'000), QStringList{"release"}) << days;
    }
}

namespace {

// Milliseconds that 32 bits count; 49.7 days.
constexpr qint64 countEnd = qint64{1} << 32;

} // namespace

TEST_F(DelayedQueueTest, AReleaseIsOnTimeWhateverTheNumberOfDaysWithoutOne) {
    // The release falls due just before, at and after the moment at which a count of 32 bits is at its end.
    for (const qint64 days : {countEnd - 2'001, countEnd - 2'000, countEnd - 1'000, countEnd - 1, countEnd,
                              countEnd + 1, qint64{100} * day, 3 * countEnd - 1'000}) {
        goOn(days);
        queue.schedule(2'000, request("release"));
        EXPECT_EQ(dispatchAfter(0), QStringList{}) << days;
        EXPECT_EQ(dispatchAfter(1'999), QStringList{}) << days;
        EXPECT_EQ(dispatchAfter(1), QStringList{"release"}) << days;
    }
}

TEST_F(DelayedQueueTest, ReleasesThatWaitStayOnTimeWhenMoreAreScheduled) {
    queue.schedule(3'000, request("first"));
    goOn(1'000);
    queue.schedule(3'000, request("second"));
    goOn(1'000);
    queue.schedule(500, request("third"));
    EXPECT_EQ(dispatchAfter(499), QStringList{});
    EXPECT_EQ(dispatchAfter(1), QStringList{"third"});
    EXPECT_EQ(dispatchAfter(499), QStringList{});
    EXPECT_EQ(dispatchAfter(1), QStringList{"first"});
    EXPECT_EQ(dispatchAfter(999), QStringList{});
    EXPECT_EQ(dispatchAfter(1), QStringList{"second"});
}

TEST_F(DelayedQueueTest, AReleaseThatHasFallenDueStaysDueWhenMoreAreScheduled) {
    queue.schedule(1'000, request("first"));
    goOn(5'000);
    queue.schedule(1'000, request("second"));
    EXPECT_EQ(dispatchAfter(0), QStringList{"first"});
    EXPECT_EQ(dispatchAfter(1'000), QStringList{"second"});
}

TEST_F(DelayedQueueTest, WhatWaitsWhileALineIsDownForDaysIsDueWhenItIsBack) {
    for (const qint64 days : {qint64{day}, countEnd + 1'000, 2 * countEnd}) {
        queue.schedule(2'000, request("release"));
        EXPECT_EQ(dispatchAfter(days), QStringList{"release"}) << days;
    }
}

TEST_F(DelayedQueueTest, TheLongestDelayIsKept) {
    queue.schedule(0xFFFFFFFFu, request("release"));
    while (steadyTime + day / 4 < countEnd - 1)
        ASSERT_EQ(dispatchAfter(day / 4), QStringList{}) << steadyTime;
    EXPECT_EQ(dispatchAfter(countEnd - 2 - steadyTime), QStringList{});
    EXPECT_EQ(dispatchAfter(1), QStringList{"release"});
}

TEST_F(DelayedQueueTest, RunsOnTheTimeOfDayUnlessGivenAClock) {
    SBusDelayedQueue real;
    real.setProtocol(protocol);
    real.schedule(0, request("at once"));
    real.schedule(3'600'000, request("in an hour"));
    real.dispatchDue();
    EXPECT_EQ(pendingInOrder(), QStringList{"at once"});
}

TEST_F(DelayedQueueTest, SchedulingOnManyThreadsLosesNothing) {
    constexpr int producers = 4;
    constexpr int requestsEach = 200;
    std::atomic<int> running{producers};
    SBusDelayedQueue real;
    real.setProtocol(protocol);
    std::vector<std::thread> threads;
    threads.reserve(producers);
    for (int producer = 0; producer < producers; ++producer)
        threads.emplace_back([&, producer] {
            for (int i = 0; i < requestsEach; ++i)
                real.schedule(0, request(QStringLiteral("%1/%2").arg(producer).arg(i)));
            --running;
        });
    while (running > 0) {
        real.dispatchDue();
        protocol->processNextRequest();
    }
    for (std::thread& thread : threads)
        thread.join();
    real.dispatchDue();
    runAll(producers * requestsEach);

    QStringList exchanged = protocol->exchanged;
    EXPECT_EQ(exchanged.size(), producers * requestsEach);
    EXPECT_EQ(exchanged.removeDuplicates(), 0);
}
