#include "services/pulses/PulseSupervisor.h"

#include "NotingTaker.h"
#include "SmallSite.h"
#include "services/RunningSite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace std::chrono_literals;
using Halvex::DriverErrorResult;
using host::PulseSupervisor;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr auto success = DriverErrorResult::Success;
const std::string on = "4/7 switch 1 on";
const std::string off = "4/7 switch 1 off";

// Point 1 of RTU 7 of channel 4 is a pulse of 2 s.
class Pulses : public testing::Test {
protected:
    Pulses() { point().pulseMs = 2'000; }

    host::Point& point() { return site.channels[0].rtus[0].points[0]; }
    PulseSupervisor& supervisor() {
        if (!made)
            make();
        return *made;
    }
    void make() {
        store = std::make_unique<host::ValueStore>(site);
        made = std::make_unique<PulseSupervisor>(
            *store, taker, [this](const std::string& text) { messages.push_back(text); },
            [this] { return now; });
    }
    std::string switchOn() {
        return supervisor().submit({4, 7, host::SwitchPoint{1, true}},
                                   [this](const host::CommandEnd& end) { results.push_back(end.result); });
    }
    void switchOnWith(DriverErrorResult result) {
        switchOn();
        taker.end(result);
    }
    void publish(int value, PointQuality quality = PointQuality::Good) {
        PointUpdate update; // of the RTU's first point
        update.value = value;
        update.quality = quality;
        store->publishPoints(4, 7, {update});
    }
    // The values of as many polls, one after another, each looked at.
    void polls(std::initializer_list<int> values, PointQuality quality = PointQuality::Good) {
        supervisor().look();
        for (const int value : values) {
            publish(value, quality);
            supervisor().look();
        }
    }

    host::Site site = smallSite();
    NotingTaker taker;
    PulseSupervisor::Clock::time_point now{};
    std::vector<std::string> messages;
    std::vector<DriverErrorResult> results;
    std::unique_ptr<host::ValueStore> store;
    std::unique_ptr<PulseSupervisor> made;
};

} // namespace

TEST_F(Pulses, APointThatStaysOnIsCommandedOff) {
    switchOnWith(success);
    EXPECT_THAT(results, ElementsAre(success));
    now += 1'999ms;
    polls({1, 1, 1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on));
    now += 1ms;
    polls({1}); // may have been read before the driver's release
    EXPECT_THAT(taker.texts, ElementsAre(on));
    polls({1});
    EXPECT_THAT(taker.texts, ElementsAre(on, off));
    EXPECT_THAT(messages, ElementsAre("channel 4 \"waterworks\", RTU 7 \"pump-house\" (station 5), point 1 "
                                      "\"RUN\" (O32): still on after its pulse of 2000 ms; it is commanded "
                                      "off"));
}

TEST_F(Pulses, PollsBetweenTwoLooksCountOneByOne) {
    switchOnWith(success);
    now += 2s;
    supervisor().look();
    publish(1);
    publish(1);
    EXPECT_THAT(taker.texts, ElementsAre(on));
    supervisor().look();
    EXPECT_THAT(taker.texts, ElementsAre(on, off));
}

// A value that nobody has read again says nothing new.
TEST_F(Pulses, LooksWithoutAPollInBetweenDoNotCount) {
    switchOnWith(success);
    now += 2s;
    polls({1});
    for (int i = 0; i < 10; ++i)
        supervisor().look();
    EXPECT_THAT(taker.texts, ElementsAre(on));
    publish(1);
    supervisor().look();
    taker.end(DriverErrorResult::BadData);
    supervisor().look();
    EXPECT_THAT(taker.texts, ElementsAre(on, off));
}

TEST_F(Pulses, AreEndedByAThreadOfTheSupervisorsOwn) {
    make();
    made = std::make_unique<PulseSupervisor>(*store, taker, [](const std::string&) {});
    point().pulseMs = 1;
    host::ExchangeFeed exchanges;
    host::Messages told;
    host::RunningSite running{site, *store, exchanges, *made, told, {}, {}};
    ASSERT_EQ(made->start(running), "");
    switchOn();
    taker.end(success);
    while (made->figures()[1].value == 0) // switched off
        publish(1);
    made->stop();
    EXPECT_THAT(taker.texts, ElementsAre(on, off));
}

TEST_F(Pulses, APointThatGoesOffIsLeftAlone) {
    switchOnWith(success);
    now += 2s;
    polls({1, 0, 1, 1, 1}); // later the controller's own program switches it on
    EXPECT_THAT(taker.texts, ElementsAre(on));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(Pulses, APointThatNobodyCommandedOnIsLeftAlone) {
    now += 2s;
    polls({1, 1, 1});
    EXPECT_THAT(taker.texts, IsEmpty());
}

TEST_F(Pulses, BadValuesSayNothing) {
    switchOnWith(success);
    now += 2s;
    polls({1, 1, 1}, PointQuality::Bad);
    EXPECT_THAT(taker.texts, ElementsAre(on));
    polls({1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on, off));
}

TEST_F(Pulses, OffIsCommandedAgainUntilThePointReadsOff) {
    switchOnWith(success);
    now += 2s;
    polls({1, 1, 1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on, off)); // the first one has no result yet
    taker.end(DriverErrorResult::BadData);
    polls({1});
    taker.end(success);
    polls({1});
    taker.end(success);
    EXPECT_THAT(taker.texts, ElementsAre(on, off, off, off));
    polls({0, 1, 1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on, off, off, off));
    EXPECT_THAT(
        messages,
        ElementsAre(HasSubstr("it is commanded off"),
                    HasSubstr("commanding it off failed: the controller refused it, or its answer was "
                              "damaged; it is tried again as long as the point reads on")));
}

TEST_F(Pulses, ARefusedOffCommandIsTriedAgain) {
    switchOnWith(success);
    now += 2s;
    taker.refusal = "1000 commands wait already";
    polls({1, 1, 1});
    EXPECT_THAT(messages, ElementsAre(HasSubstr("it cannot be commanded off: 1000 commands wait already")));
    taker.refusal.clear();
    polls({1});
    EXPECT_THAT(taker.texts, ElementsAre(on, off));
}

TEST_F(Pulses, ANewerOnCommandBeginsTheWidthAnew) {
    switchOnWith(success);
    now += 1'500ms;
    switchOnWith(success);
    now += 1'500ms;
    polls({1, 1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on, on));
    now += 500ms;
    polls({1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on, on, off));
}

// It would cut the new pulse short.
TEST_F(Pulses, OffIsNotCommandedBehindAnOnCommandThatWaits) {
    switchOnWith(success);
    now += 2s;
    switchOn();
    polls({1, 1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on, on));
    taker.end(success);
    now += 2s;
    polls({1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on, on, off));
}

TEST_F(Pulses, ARefusedOnCommandChangesNothing) {
    switchOnWith(success);
    taker.refusal = "no";
    EXPECT_EQ(switchOn(), "no");
    taker.refusal.clear();
    now += 2s;
    polls({1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on, off));
}

// Its answer may have got lost, or a serial line's device failed before it came.
TEST_F(Pulses, AnOnCommandThatFailedCountsBecauseItMayHaveBeenCarriedOut) {
    for (const DriverErrorResult failure :
         {DriverErrorResult::TimeOut, DriverErrorResult::ChannelError, DriverErrorResult::BadData}) {
        taker.texts.clear();
        switchOnWith(failure);
        now += 2s;
        polls({1, 1});
        EXPECT_THAT(taker.texts, ElementsAre(on, off));
        taker.end(success);
        polls({0});
    }
}

TEST_F(Pulses, AnOnCommandThatTheDriverNeverTookDoesNotCount) {
    switchOn();
    taker.end({DriverErrorResult::ChannelError, false});
    EXPECT_THAT(results, ElementsAre(DriverErrorResult::ChannelError));
    now += 2s;
    polls({1, 1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on));
}

// The driver may still send it: then its pulse begins.
TEST_F(Pulses, AnOnCommandThatTheDriverStillHoldsIsNotForgottenWhileThePointReadsOff) {
    const auto isHeld = std::make_shared<std::atomic<bool>>(true);
    switchOn();
    taker.end({DriverErrorResult::TimeOut, true, false, isHeld});
    now += 2s;
    polls({0, 0, 0, 0});
    *isHeld = false; // it was sent
    polls({1, 1});
    now += 2s;
    EXPECT_THAT(taker.texts, ElementsAre(on));
    polls({1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on, off));
}

TEST_F(Pulses, AnOnCommandThatTheDriverHasGivenUpIsForgottenOnceThePointReadsOff) {
    const auto isHeld = std::make_shared<std::atomic<bool>>(false);
    switchOn();
    taker.end({DriverErrorResult::TimeOut, true, false, isHeld});
    now += 2s;
    polls({0, 0, 1, 1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on));
}

TEST_F(Pulses, APointWhoseOffCommandIsNotItsReleaseIsNotSupervised) {
    point().secondAddress = {'O', 33};
    switchOnWith(success);
    now += 2s;
    polls({1, 1, 1});
    EXPECT_THAT(taker.texts, ElementsAre(on));
}

TEST_F(Pulses, OtherCommandsPassThrough) {
    supervisor().submit({4, 7, host::SwitchPoint{1, false}}, [](const host::CommandEnd&) {});
    supervisor().submit({4, 7, host::SynchroniseClock{}}, [](const host::CommandEnd&) {});
    EXPECT_THAT(taker.texts, ElementsAre(off, "4/7 clock"));
}
