#include "services/clocks/ClockSchedule.h"

#include "NotingTaker.h"
#include "SmallSite.h"
#include "services/RunningSite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace std::chrono_literals;
using Halvex::DriverErrorResult;
using host::ClockSchedule;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Clocks : public testing::Test {
protected:
    Clocks() {
        site.channels[0].type = host::LineType::Serial;
        site.channels[0].rtus[0].timeSync = 24h;
    }

    void requestEnds(bool answered) {
        if (!made)
            made = std::make_unique<ClockSchedule>(
                site, taker, [this](const std::string& text) { messages.push_back(text); },
                [this] { return now; });
        ++status.requests;
        status.answers += answered ? 1 : 0;
        made->look({{&site.channels[0], &site.channels[0].rtus[0], status}});
    }

    host::Site site = smallSite();
    NotingTaker taker;
    ClockSchedule::Clock::time_point now{};
    RtuStatus status;
    std::vector<std::string> messages;
    std::unique_ptr<ClockSchedule> made;
};

} // namespace

TEST_F(Clocks, AreSetAfterTheFirstAnswerAndThenEveryPeriod) {
    requestEnds(false);
    EXPECT_THAT(taker.texts, IsEmpty());
    requestEnds(true);
    EXPECT_THAT(taker.texts, ElementsAre("4/7 clock"));
    taker.end(DriverErrorResult::Success);
    now += 24h - 1ms;
    requestEnds(true);
    EXPECT_EQ(taker.texts.size(), 1U);
    now += 1ms;
    requestEnds(true);
    EXPECT_EQ(taker.texts.size(), 2U);
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(Clocks, OnEthernetAreLeftAlone) {
    site.channels[0].type = host::LineType::Ethernet;
    requestEnds(true);
    EXPECT_THAT(taker.texts, IsEmpty());
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(Clocks, OfAnRtuThatIsSilentWaitForItsNextAnswer) {
    requestEnds(true);
    now += 24h;
    requestEnds(false);
    EXPECT_EQ(taker.texts.size(), 1U);
    now += 1h;
    requestEnds(true);
    EXPECT_EQ(taker.texts.size(), 2U);
}

TEST_F(Clocks, ThatCannotBeSetAreTold) {
    const std::string start =
        "channel 4 \"waterworks\", RTU 7 \"pump-house\" (station 5): its clock could not be "
        "set: ";
    requestEnds(true);
    taker.end(DriverErrorResult::TimeOut);
    now += 24h;
    taker.refusal = "1000 commands wait already";
    requestEnds(true);
    EXPECT_THAT(messages, ElementsAre(start + "no answer in time", start + "1000 commands wait already"));
}

TEST_F(Clocks, OfRtusThatDoNotAskForItAreLeftAlone) {
    site.channels[0].rtus[0].timeSync.reset();
    requestEnds(true);
    EXPECT_THAT(taker.texts, IsEmpty());
}

TEST_F(Clocks, AreSetByAThreadOfTheSchedulesOwn) {
    host::ValueStore values(site);
    host::ExchangeFeed exchanges;
    host::Messages told;
    ClockSchedule schedule(site, taker, [](const std::string&) {});
    host::SiteFigures figures{{}, {{&site.channels[0], &site.channels[0].rtus[0], {}}}};
    figures.rtus[0].status.answers = 1;
    host::RunningSite running{site, values, exchanges, taker, told, [&] { return figures; }, {}};
    ASSERT_EQ(schedule.start(running), "");
    while (schedule.figures()[0].value == 0)
        std::this_thread::sleep_for(1ms);
    schedule.stop();
    EXPECT_THAT(taker.texts, ElementsAre("4/7 clock"));
}
