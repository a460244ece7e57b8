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
        reading = time;
        queue.dispatchDue();
        return pendingInOrder();
    }

    int reading = 0;
    int readings = 0;
    SBusDelayedQueue queue{[this] {
        ++readings;
        return reading;
    }};
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
    reading = 1'000;
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

TEST_F(DelayedQueueTest, AnEmptyQueueIsLeftWithoutItsLock) {
    // The clock is read with the queue's lock held: a dispatch from there that wanted the lock would hang.
    SBusDelayedQueue* self = nullptr;
    bool dispatching = false;
    SBusDelayedQueue nested([&] {
        if (self != nullptr && !dispatching) {
            dispatching = true;
            self->dispatchDue();
        }
        return 0;
    });
    nested.setProtocol(protocol);
    self = &nested;
    expectNoDeadlock([&] { nested.schedule(0, request("release")); });
    EXPECT_TRUE(dispatching);
    nested.dispatchDue();
    EXPECT_EQ(pendingInOrder(), QStringList{"release"});
}

TEST_F(DelayedQueueTest, AReleaseScheduledBeforeTheDaysEndFallsDueAfterIt) {
    reading = day - 1'000;
    SBusDelayedQueue late([this] { return reading; });
    late.setProtocol(protocol);
    late.schedule(3'000, request("release"));
    for (const int time : {day - 1, 0, 1'999}) {
        reading = time;
        late.dispatchDue();
        EXPECT_EQ(pendingInOrder(), QStringList{}) << time;
    }
    reading = 2'000;
    late.dispatchDue();
    EXPECT_EQ(pendingInOrder(), QStringList{"release"});
}

TEST_F(DelayedQueueTest, AReleaseScheduledLongAfterTheLastOneIsTimedFromItsOwnMoment) {
    queue.schedule(0, request("first"));
    EXPECT_EQ(dispatchAt(0), QStringList{"first"});
    // Nothing was pending meanwhile, for an unknown number of days.
    reading = 5'000;
    queue.schedule(2'000, request("second"));
    EXPECT_EQ(dispatchAt(6'999), QStringList{});
    EXPECT_EQ(dispatchAt(7'000), QStringList{"second"});
}

TEST_F(DelayedQueueTest, ADelayOfManyDaysIsKeptToTheMillisecond) {
    constexpr unsigned delay = 3'000'000'000; // 34 days and some hours
    queue.schedule(delay, request("release"));
    constexpr int step = day / 4;
    unsigned now = 0;
    for (; now + step < delay; now += step)
        ASSERT_EQ(dispatchAt(static_cast<int>(now % day)), QStringList{}) << now;
    EXPECT_EQ(dispatchAt(static_cast<int>((delay - 1) % day)), QStringList{});
    EXPECT_EQ(dispatchAt(static_cast<int>(delay % day)), QStringList{"release"});
}

TEST_F(DelayedQueueTest, EveryReleaseOfAHundredDaysOfUseIsOnTime) {
    // A pulse every quarter of a day, each released after two seconds; a 32-bit count ends on the 50th day.
    for (int quarter = 1; quarter <= 400; ++quarter) {
        reading = quarter % 4 * (day / 4);
        queue.schedule(2'000, request("release"));
        ASSERT_EQ(dispatchAt(reading + 1'999), QStringList{}) << quarter;
        ASSERT_EQ(dispatchAt(reading + 1), QStringList{"release"}) << quarter;
    }
}

TEST_F(DelayedQueueTest, EveryReleaseOfAHundredDaysIsOnTimeAroundMidnightToo) {
    for (int days = 1; days <= 100; ++days) {
        reading = day - 1'000;
        queue.schedule(2'000, request("release"));
        ASSERT_EQ(dispatchAt(999), QStringList{}) << days;
        ASSERT_EQ(dispatchAt(1'000), QStringList{"release"}) << days;
    }
}

namespace {

// A queue that has never been empty since its clock began, brought close to the end of a 32-bit count.
class CountEndTest : public DelayedQueueTest {
protected:
    static constexpr quint64 countEnd = quint64{1} << 32;

    CountEndTest() {
        queue.schedule(0xFFFFFFFFu, request("longest delay"));
        while (now + day / 4 < countEnd - 10'000)
            goOn(day / 4);
    }

    QStringList goOn(quint64 milliseconds) {
        now += milliseconds;
        return dispatchAt(static_cast<int>(now % day));
    }
    QStringList goOnTo(quint64 time) { return goOn(time - now); }

    quint64 now = 0;
};

} // namespace

TEST_F(CountEndTest, TheLongestDelayIsKept) {
    EXPECT_EQ(goOnTo(countEnd - 2), QStringList{});
    EXPECT_EQ(goOnTo(countEnd - 1), QStringList{"longest delay"});
}

TEST_F(CountEndTest, AReleaseScheduledBeforeTheCountsEndFallsDueAfterItAndNotBefore) {
    goOnTo(countEnd - 1'000);
    queue.schedule(2'000, request("release"));
    EXPECT_EQ(goOnTo(countEnd - 999), QStringList{});
    EXPECT_EQ(goOnTo(countEnd - 1), QStringList{"longest delay"});
    EXPECT_EQ(goOnTo(countEnd + 999), QStringList{});
    EXPECT_EQ(goOnTo(countEnd + 1'000), QStringList{"release"});
}

TEST_F(CountEndTest, AReleaseDueJustBeforeTheCountsEndIsNotMissed) {
    goOnTo(countEnd - 1'000);
    queue.schedule(995, request("release"));
    EXPECT_EQ(goOnTo(countEnd - 6), QStringList{});
    EXPECT_TRUE(goOnTo(countEnd + 4).contains("release"));
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
