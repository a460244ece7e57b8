#include "NotingTaker.h"
#include "SmallSite.h"
#include "services/pulses/PulseSupervisor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What becomes of running pulses when the host is asked to end.

using namespace std::chrono_literals;
using Halvex::DriverErrorResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr auto success = DriverErrorResult::Success;
const std::string on = "4/7 switch 1 on";
const std::string end = "4/7 end 1";
const std::string who = "channel 4 \"waterworks\", RTU 7 \"pump-house\" (station 5), point 1 \"RUN\" (O32)";

// Point 1 of RTU 7 of channel 4 is a pulse of 4 s.
class EndingPulses : public testing::Test {
protected:
    EndingPulses() { point().pulseMs = 4'000; }

    host::Point& point() { return site.channels[0].rtus[0].points[0]; }
    void switchOn() {
        EXPECT_EQ(pulses.submit({4, 7, host::SwitchPoint{1, true}}, [](const host::CommandEnd&) {}), "");
    }
    void pulse() {
        switchOn();
        taker.end(success);
    }

    host::Site site = smallSite();
    host::ValueStore store{site};
    NotingTaker taker;
    host::PulseSupervisor::Clock::time_point now = host::PulseSupervisor::Clock::time_point() + 1h;
    std::vector<std::string> messages;
    host::PulseSupervisor pulses{store, taker, [this](const std::string& text) { messages.push_back(text); },
                                 [this] { return now; }};
};

} // namespace

TEST_F(EndingPulses, AreSwitchedOffAtOnceAndAwaited) {
    pulse();
    now += 500ms;
    pulses.beginEnding();
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on, end));
    now += 100ms;
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on, end)); // one at a time
    taker.end(success);
    EXPECT_TRUE(pulses.haveEnded());
    EXPECT_THAT(pulses.stillOn(), IsEmpty());
    EXPECT_THAT(messages, ElementsAre(who + ": its pulse is ended"));
}

TEST_F(EndingPulses, NothingHoldsUpTheEndWithoutThem) {
    pulses.beginEnding();
    EXPECT_TRUE(pulses.haveEnded());
    EXPECT_THAT(pulses.stillOn(), IsEmpty());
}

TEST_F(EndingPulses, AreTriedAgainAndNamedWhenTheirTimeIsOver) {
    pulse();
    pulses.beginEnding();
    EXPECT_FALSE(pulses.haveEnded());
    taker.end(DriverErrorResult::BadData);
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on, end)); // not without a pause
    now += 200ms;
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on, end, end));
    taker.end(DriverErrorResult::TimeOut);
    now += 3'799ms;
    EXPECT_FALSE(pulses.haveEnded());
    now += 1ms;
    EXPECT_TRUE(pulses.haveEnded());
    EXPECT_THAT(pulses.stillOn(), ElementsAre(who + ": left on, or it may be: no answer in time"));
}

TEST_F(EndingPulses, AreGivenTenSecondsAtMostAndThreeAtLeast) {
    point().pulseMs = 3'600'000;
    pulse();
    pulses.beginEnding();
    EXPECT_FALSE(pulses.haveEnded()); // the command has no result
    now += 9'999ms;
    EXPECT_FALSE(pulses.haveEnded());
    now += 1ms;
    EXPECT_TRUE(pulses.haveEnded());
    EXPECT_THAT(pulses.stillOn(), ElementsAre(HasSubstr("there was no time to end its pulse")));
}

TEST_F(EndingPulses, WaitForTheResultOfTheirOnCommand) {
    switchOn();
    pulses.beginEnding();
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on));
    taker.end(success);
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on, end));
}

TEST_F(EndingPulses, AreNoneWhenTheOnCommandWasNeverSent) {
    switchOn();
    pulses.beginEnding();
    taker.end({DriverErrorResult::ChannelError, false});
    EXPECT_TRUE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on));
}

TEST_F(EndingPulses, WaitWhileTheDriverMaySendTheOnCommand) {
    const auto isHeld = std::make_shared<std::atomic<bool>>(true);
    switchOn();
    taker.end({DriverErrorResult::TimeOut, true, false, isHeld});
    pulses.beginEnding();
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on));
    *isHeld = false;
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on, end));
}

// The driver's release says on once more before it says off.
TEST_F(EndingPulses, AreSwitchedOffBehindAReleaseThatIsDueSoon) {
    pulse();
    now += 3'500ms;
    pulses.beginEnding();
    EXPECT_FALSE(pulses.haveEnded());
    now += 999ms;
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on));
    now += 1ms;
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on, end));
    taker.end(success);
    EXPECT_TRUE(pulses.haveEnded());
}

TEST_F(EndingPulses, AreSwitchedOffAgainWhenTheReleaseCameWithTheResult) {
    pulse();
    now += 2'900ms;
    pulses.beginEnding();
    EXPECT_FALSE(pulses.haveEnded());
    now += 1'100ms;
    taker.end(success); // the release is due now
    EXPECT_FALSE(pulses.haveEnded());
    now += 500ms;
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on, end, end));
    taker.end(success);
    EXPECT_TRUE(pulses.haveEnded());
}

TEST_F(EndingPulses, IncludeThoseWhoseOffCommandIsNotTheirRelease) {
    point().secondAddress = {'F', 33};
    pulse();
    pulses.beginEnding();
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on, end));
    now += 4s;
    EXPECT_TRUE(pulses.haveEnded());
    EXPECT_THAT(pulses.stillOn(), ElementsAre(HasSubstr("(F33): left on")));
}

// The driver releases an output when it has written 1, and no other.
TEST_F(EndingPulses, LeaveAnOutputAloneThatTheDriverDoesNotRelease) {
    point().value = 2;
    pulse();
    pulses.beginEnding();
    EXPECT_TRUE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on));
}

TEST_F(EndingPulses, IncludeThoseThatAnOffCommandHasBegun) {
    point().value = 1;
    pulses.submit({4, 7, host::SwitchPoint{1, false}}, [](const host::CommandEnd&) {});
    taker.end(success);
    pulses.beginEnding();
    EXPECT_FALSE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre("4/7 switch 1 off", end));
}

TEST_F(EndingPulses, AreOverTwoSecondsBehindTheirWidthWhereNobodyReadsThem) {
    point().secondAddress = {'F', 33};
    pulse();
    now += 6s;
    pulses.look();
    pulses.beginEnding();
    EXPECT_TRUE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, ElementsAre(on));
}

TEST_F(EndingPulses, TakeNoMoreCommands) {
    pulses.beginEnding();
    EXPECT_EQ(pulses.submit({4, 7, host::SwitchPoint{1, true}}, [](const host::CommandEnd&) {}),
              "the host is ending and takes no more commands");
    EXPECT_EQ(pulses.submit({4, 7, host::SetPoint{3, 5}}, [](const host::CommandEnd&) {}),
              "the host is ending and takes no more commands");
    EXPECT_TRUE(pulses.haveEnded());
    EXPECT_THAT(taker.texts, IsEmpty());
}
