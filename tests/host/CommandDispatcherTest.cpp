#include "commands/CommandDispatcher.h"

#include "Dispatching.h"
#include "runtime/HostRuntime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <map>
#include <thread>

using Halvex::DriverErrorResult;
using host::Command;
using host::CommandAction;
using host::CommandDispatcher;
using host::SetPoint;
using host::SetPoints;
using host::SwitchPoint;
using host::SynchroniseClock;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;
using namespace std::chrono_literals;

namespace {

constexpr auto success = DriverErrorResult::Success;
constexpr auto timeOut = DriverErrorResult::TimeOut;
constexpr auto channelError = DriverErrorResult::ChannelError;

} // namespace

TEST_F(Dispatching, EveryKindOfCommandReachesItsDriverCall) {
    rtus[7].answerAtOnce(success);
    EXPECT_EQ(submit(SwitchPoint{1, true}), "");
    EXPECT_EQ(submit(SwitchPoint{1, false}), "");
    EXPECT_EQ(submit(SetPoint{2, 1.5}), "");
    EXPECT_EQ(submit(SynchroniseClock{}), "");
    EXPECT_THAT(results.await(4),
                ElementsAre(Pair(0, success), Pair(1, success), Pair(2, success), Pair(3, success)));
    EXPECT_THAT(rtus[7].calls(), ElementsAre("switch 0 on", "switch 0 off", "set 1 1.5", "clock"));
}

TEST_F(Dispatching, TheNextCommandIsHandedOverOnlyWhenTheOneBeforeHasItsResult) {
    submit(SwitchPoint{1, true});
    submit(SwitchPoint{1, false});
    EXPECT_THAT(rtus[7].awaitCalls(1), ElementsAre("switch 0 on"));
    rtus[7].end(DriverErrorResult::BadData);
    EXPECT_THAT(rtus[7].awaitCalls(2), ElementsAre("switch 0 on", "switch 0 off"));
    EXPECT_THAT(results.all(), ElementsAre(Pair(0, DriverErrorResult::BadData)));
    EXPECT_EQ(rtus[7].open(), 1U);
    rtus[7].end(success);
    EXPECT_THAT(results.await(2), ElementsAre(Pair(0, DriverErrorResult::BadData), Pair(1, success)));
}

// The driver would send the newest first: one RTU with much to do would keep the others waiting.
TEST_F(Dispatching, TheRtusOfALineTakeTurns) {
    for (int i = 0; i < 3; ++i)
        submit(SetPoint{3, static_cast<double>(i)}, 7);
    rtus[7].awaitCalls(1);
    submit(SynchroniseClock{}, 8);
    EXPECT_THAT(rtus[8].calls(), IsEmpty());
    rtus[7].end(success);
    EXPECT_THAT(rtus[8].awaitCalls(1), ElementsAre("clock"));
    EXPECT_EQ(rtus[7].calls().size(), 1U);
    rtus[8].end(success);
    rtus[7].awaitCalls(2);
    rtus[7].end(success);
    rtus[7].awaitCalls(3);
    rtus[7].end(success);
    results.await(4);
}

TEST_F(Dispatching, ADriverRefusalIsTheResult) {
    rtus[7].refuse(DriverErrorResult::UnsupportedAddress);
    submit(SwitchPoint{1, true});
    EXPECT_THAT(results.await(1), ElementsAre(Pair(0, DriverErrorResult::UnsupportedAddress)));
}

TEST_F(Dispatching, TellsWhetherTheDriverTookWhatHasFailed) {
    std::promise<host::CommandEnd> first;
    std::promise<host::CommandEnd> second;
    std::promise<host::CommandEnd> third;
    const auto into = [](std::promise<host::CommandEnd>& promise) {
        return [&promise](const host::CommandEnd& end) { promise.set_value(end); };
    };
    dispatcher().submit({4, 7, SwitchPoint{1, true}}, into(first));
    rtus[7].awaitCalls(1);
    rtus[7].end(channelError);
    EXPECT_TRUE(first.get_future().get().wasTaken) << "it may have been sent";

    dispatcher().submit({4, 7, SetPoints{{{2, 1.5}, {3, 4}}}}, into(second));
    rtus[7].awaitCalls(2);
    rtus[7].refuse(channelError);
    rtus[7].end(success);
    EXPECT_TRUE(second.get_future().get().wasTaken) << "a part of it was sent";

    dispatcher().submit({4, 7, SwitchPoint{1, true}}, into(third));
    EXPECT_FALSE(third.get_future().get().wasTaken);
}

// After a lost answer the channel closes its link and opens it again in its next turn.
TEST_F(Dispatching, ACommandThatMeetsAClosedLinkIsHandedOverAgainWhenTheLinkIsOpen) {
    rtus[7].refuse(channelError);
    submit(SetPoint{3, 1});
    submit(SetPoint{3, 2});
    EXPECT_THAT(rtus[7].awaitCalls(3), Each("set 2 1"));
    EXPECT_THAT(results.all(), IsEmpty());
    rtus[7].takeAgain();
    rtus[7].answerAtOnce(success);
    EXPECT_THAT(results.await(2), ElementsAre(Pair(0, success), Pair(1, success)));
    EXPECT_EQ(rtus[7].calls().back(), "set 2 2");
}

TEST_F(Dispatching, ALineThatStaysClosedFailsTheFirstCommandAfterAWhileAndTheNextAtOnce) {
    rtus[7].refuse(channelError);
    const auto begin = std::chrono::steady_clock::now();
    submit(SetPoint{3, 1});
    submit(SetPoint{3, 2});
    EXPECT_THAT(results.await(2), ElementsAre(Pair(0, channelError), Pair(1, channelError)));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, CommandDispatcher::longestReopening);
    const std::vector<std::string> calls = rtus[7].calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "set 2 2"), 1);
}

TEST_F(Dispatching, WhileOneRtuMeetsAClosedLinkTheOthersHaveTheirTurns) {
    rtus[7].refuse(channelError);
    rtus[8].answerAtOnce(success);
    submit(SetPoint{3, 1}, 7);
    submit(SynchroniseClock{}, 8);
    EXPECT_THAT(results.await(1), ElementsAre(Pair(1, success)));
    dispatcher().stop();
    EXPECT_THAT(results.all(), ElementsAre(Pair(1, success), Pair(0, channelError)));
}

TEST_F(Dispatching, WhatTheControllerRefusedIsBadDataAlthoughTheDriverTakesItForDone) {
    rtus[7].answerAtOnce(success);
    rtus[8].answerAtOnce(success);
    refusing = 7;
    submit(SwitchPoint{1, true}, 7);
    EXPECT_THAT(results.await(1), ElementsAre(Pair(0, DriverErrorResult::BadData)));
    submit(SwitchPoint{1, true}, 8);
    EXPECT_THAT(results.await(2), ElementsAre(Pair(0, DriverErrorResult::BadData), Pair(1, success)));
}

TEST_F(Dispatching, AListIsCarriedOutAsDriverCallsInTheirOrder) {
    rtus[7].answerAtOnce(success);
    submit(SetPoints{{{2, 1.5}, {3, 4}}});
    EXPECT_THAT(results.await(1), ElementsAre(Pair(0, success)));
    EXPECT_THAT(rtus[7].calls(), ElementsAre("set 1 1.5", "set 2 4"));
}

TEST_F(Dispatching, ConsecutiveIntegersOfAListTravelTogether) {
    site.channels[0].rtus[0].points[1].isFloat = false;
    rtus[7].answerAtOnce(success);
    submit(SetPoints{{{2, 1}, {3, 4}}});
    results.await(1);
    EXPECT_THAT(rtus[7].calls(), ElementsAre("list 1=1 2=4"));
}

// Through the hidden integer point at the same register: the driver's word for 0.0 means another number.
TEST_F(Dispatching, AFloatIsSetToZeroAsAnInteger) {
    rtus[7].answerAtOnce(success);
    const std::string twin = std::to_string(integerTwinOf(site.channels[0].rtus[0], flow()));
    submit(SetPoint{2, 0});
    submit(SetPoints{{{2, -0.0}, {3, 4}}});
    results.await(2);
    EXPECT_THAT(rtus[7].calls(), ElementsAre("set " + twin + " 0", "list 2=4 " + twin + "=0"));
}

TEST_F(Dispatching, TheFirstFailureOfAListIsItsResultAndTheRestStaysUnsent) {
    submit(SetPoints{{{2, 1.5}, {3, 4}}});
    rtus[7].awaitCalls(1);
    rtus[7].end(DriverErrorResult::BadData);
    EXPECT_THAT(results.await(1), ElementsAre(Pair(0, DriverErrorResult::BadData)));
    rtus[7].answerAtOnce(success);
    submit(SynchroniseClock{});
    results.await(2);
    EXPECT_THAT(rtus[7].calls(), ElementsAre("set 1 1.5", "clock"));
}

TEST_F(Dispatching, OneCommandMoreThanTheQueueHoldsIsRefused) {
    ASSERT_EQ(submit(SwitchPoint{1, true}), ""); // in progress
    for (std::size_t i = 0; i < CommandDispatcher::mostWaiting; ++i)
        ASSERT_EQ(submit(SetPoint{3, static_cast<double>(i)}), "");
    EXPECT_EQ(submit(SwitchPoint{1, false}),
              "channel 4 \"waterworks\", RTU 7 \"pump-house\" (station 5): 1000 commands wait already; wait "
              "for their results, and check whether the controller answers");
    EXPECT_EQ(submit(SynchroniseClock{}, 8), "");
    rtus[7].awaitCalls(1);
    rtus[7].answerAtOnce(success);
    rtus[8].answerAtOnce(success);
    rtus[7].end(success);
    EXPECT_EQ(results.await(2 + CommandDispatcher::mostWaiting).size(), 2 + CommandDispatcher::mostWaiting);
    EXPECT_EQ(submit(SwitchPoint{1, false}), "");
    results.await(3 + CommandDispatcher::mostWaiting);
}

TEST_F(Dispatching, AResultThatDoesNotComeInTimeIsATimeOut) {
    dispatcher(std::chrono::milliseconds(30));
    submit(SwitchPoint{1, true});
    EXPECT_THAT(results.await(1), ElementsAre(Pair(0, timeOut)));
    // Its end comes late, while the next command is on its way.
    submit(SwitchPoint{1, false});
    rtus[7].awaitCalls(2);
    rtus[7].end(success);
    EXPECT_THAT(results.await(2), ElementsAre(Pair(0, timeOut), Pair(1, timeOut)));
    rtus[7].end(success);
    rtus[7].answerAtOnce(success);
    submit(SynchroniseClock{});
    EXPECT_THAT(results.await(3), ElementsAre(Pair(0, timeOut), Pair(1, timeOut), Pair(2, success)));
}

TEST_F(Dispatching, StoppingEndsWhatWaitsAndWhatIsInProgress) {
    for (int i = 0; i < 5; ++i)
        submit(SetPoint{3, static_cast<double>(i)});
    submit(SynchroniseClock{}, 8);
    rtus[7].awaitCalls(1);
    dispatcher().stop();
    EXPECT_THAT(results.all(),
                ElementsAre(Pair(0, channelError), Pair(1, channelError), Pair(2, channelError),
                            Pair(3, channelError), Pair(4, channelError), Pair(5, channelError)));
    EXPECT_THAT(submit(SwitchPoint{1, true}), HasSubstr("the host is ending"));
    rtus[7].end(success); // too late
    EXPECT_EQ(results.all().size(), 6U);
    dispatcher().stop();
}

TEST_F(Dispatching, WhatWaitsCanBeEndedWithoutWhatIsOnItsWay) {
    for (int i = 0; i < 3; ++i)
        submit(SwitchPoint{1, true});
    submit(SwitchPoint{1, true}, 8); // the line is in use
    rtus[7].awaitCalls(1);
    dispatcher().abandonWaiting();
    results.await(3);
    rtus[7].end(success);
    EXPECT_THAT(results.await(4), UnorderedElementsAre(Pair(0, success), Pair(1, channelError),
                                                       Pair(2, channelError), Pair(3, channelError)));
    submit(SwitchPoint{1, false}); // goes on
    EXPECT_THAT(rtus[7].awaitCalls(2), ElementsAre("switch 0 on", "switch 0 off"));
    EXPECT_THAT(rtus[8].calls(), IsEmpty());
    rtus[7].end(success);
    results.await(5);
}

TEST_F(Dispatching, TellsHowLongTheDriverHoldsACommandThatWasGivenUp) {
    std::promise<host::CommandEnd> promise;
    dispatcher(20ms).submit({4, 7, SwitchPoint{1, true}},
                            [&promise](const host::CommandEnd& end) { promise.set_value(end); });
    const host::CommandEnd end = promise.get_future().get();
    EXPECT_EQ(end.result, DriverErrorResult::TimeOut);
    ASSERT_TRUE(end.stillHeld);
    EXPECT_TRUE(*end.stillHeld);
    rtus[7].end(success);
    EXPECT_FALSE(*end.stillHeld);
}

// Asked when the command ends: behind it the RTU's last request is another one.
TEST_F(Dispatching, TellsARefusalWithTheResult) {
    const auto endOf = [this](DriverErrorResult result) {
        std::promise<host::CommandEnd> promise;
        std::future<host::CommandEnd> future = promise.get_future();
        rtus[7].answerAtOnce(result);
        dispatcher().submit({4, 7, SwitchPoint{1, true}},
                            [&promise](const host::CommandEnd& end) { promise.set_value(end); });
        return future.get();
    };
    EXPECT_FALSE(endOf(DriverErrorResult::BadData).wasRefused);
    refusing = 7;
    EXPECT_TRUE(endOf(DriverErrorResult::BadData).wasRefused);
    EXPECT_TRUE(endOf(timeOut).wasRefused);
    EXPECT_TRUE(endOf(success).wasRefused);       // which the driver takes for done
    EXPECT_FALSE(endOf(channelError).wasRefused); // no answer, so no refusal
}

TEST_F(Dispatching, OfWhatAStopEndsOnlyTheCommandOnItsWayMayHaveBeenSent) {
    std::vector<bool> wereTaken;
    const auto note = [&](const host::CommandEnd& end) { wereTaken.push_back(end.wasTaken); };
    dispatcher().submit({4, 7, SwitchPoint{1, true}}, note);
    rtus[7].awaitCalls(1);
    dispatcher().submit({4, 7, SwitchPoint{1, false}}, note);
    dispatcher().submit({4, 8, SwitchPoint{1, true}}, note);
    dispatcher().stop();
    EXPECT_THAT(wereTaken, ElementsAre(true, false, false));
    rtus[7].end(success); // too late
}

TEST_F(Dispatching, AResultAtTheMomentOfTheStopIsToldOnce) {
    for (int round = 0; round < 200; ++round) {
        CommandResults told;
        CommandedRtu rtu;
        CommandDispatcher own(
            site, [&](int, int) { return &rtu; }, [](int, int) { return false; });
        own.submit({4, 7, SwitchPoint{1, true}}, told.of(0));
        own.submit({4, 7, SwitchPoint{1, false}}, told.of(1));
        rtu.awaitCalls(1);
        std::thread engine([&] { rtu.end(success); });
        own.stop();
        engine.join();
        ASSERT_EQ(told.all().size(), 2U);
        while (rtu.open() > 0)
            rtu.end(success);
        ASSERT_EQ(told.all().size(), 2U);
    }
}

TEST_F(Dispatching, AResultMayBeAnsweredWithTheNextCommand) {
    rtus[7].answerAtOnce(success);
    std::function<void(int)> next = [&](int left) {
        const auto done = [&next, left, told = results.of(left)](const host::CommandEnd& end) {
            if (left > 0)
                next(left - 1);
            told(end);
        };
        EXPECT_EQ(dispatcher().submit({4, 7, SwitchPoint{1, true}}, done), "");
    };
    next(99);
    EXPECT_EQ(results.await(100).size(), 100U);
}

TEST_F(Dispatching, TenThousandCommandsFromFourThreadsHaveTenThousandResults) {
    constexpr int threads = 4;
    constexpr int commandsOfEach = 2'500;
    constexpr int commandsInAll = threads * commandsOfEach;
    rtus[7].answerAtOnce(success);
    dispatcher();
    std::vector<std::thread> operators;
    operators.reserve(threads);
    for (int thread = 0; thread < threads; ++thread)
        operators.emplace_back([this, thread] {
            for (int i = 0; i < commandsOfEach; ++i) {
                const int number = thread * commandsOfEach + i;
                const Command command{4, 7, SetPoint{3, static_cast<double>(number)}};
                while (!made->submit(command, results.of(number)).empty())
                    std::this_thread::yield(); // the queue is full
            }
        });
    for (std::thread& one : operators)
        one.join();
    const CommandResults::List told = results.await(commandsInAll);
    dispatcher().stop();
    ASSERT_EQ(results.all().size(), std::size_t{commandsInAll});

    const std::vector<std::string> calls = rtus[7].calls();
    ASSERT_EQ(calls.size(), told.size());
    std::map<int, int> lastOfThread;
    for (std::size_t i = 0; i < told.size(); ++i) {
        const auto [number, result] = told[i];
        ASSERT_EQ(result, success);
        ASSERT_EQ(calls[i], "set 2 " + std::to_string(number)); // results come in the order of the calls
        const int thread = number / commandsOfEach;
        const auto [last, isFirst] = lastOfThread.emplace(thread, number);
        ASSERT_TRUE(isFirst || number == last->second + 1) << number;
        last->second = number;
    }
}
