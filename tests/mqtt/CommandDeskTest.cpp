#include "services/mqtt/CommandDesk.h"
#include "NotingTaker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using namespace std::chrono_literals;
using Halvex::DriverErrorResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class Desk : public testing::Test {
protected:
    void take(const std::string& key, const std::string& refusal = {}) {
        CommandRequest request;
        request.command = {4, 7, SwitchPoint{1, true}};
        request.key = key;
        request.refusal = refusal;
        desk.take(request, now);
    }
    std::vector<std::string> answers() {
        std::vector<std::string> texts;
        for (const CommandDesk::Answer& answer : desk.takeAnswers())
            texts.push_back(answer.result.word);
        return texts;
    }

    RecentCommands::Time now{};
    NotingTaker taker;
    CommandDesk desk{taker};
};

} // namespace

TEST_F(Desk, AnswersOnceACommandHasEnded) {
    take("a");
    EXPECT_THAT(taker.texts, ElementsAre("4/7 switch 1 on"));
    EXPECT_THAT(answers(), IsEmpty());
    taker.end(DriverErrorResult::Success);
    EXPECT_THAT(answers(), ElementsAre("success"));
    EXPECT_THAT(answers(), IsEmpty());
}

TEST_F(Desk, TellsHowItFailed) {
    take("a");
    take("b");
    taker.end(DriverErrorResult::TimeOut);
    taker.end(CommandEnd{DriverErrorResult::BadData, true, true});
    EXPECT_THAT(answers(), ElementsAre("time-out", "refused"));
}

TEST_F(Desk, AnswersARefusedOneAtOnceAndDoesNotCarryItOut) {
    take("a", "no such point");
    taker.refusal = "too many wait";
    take("b");
    EXPECT_THAT(taker.texts, IsEmpty());
    EXPECT_THAT(answers(), ElementsAre("refused", "refused"));
}

TEST_F(Desk, CarriesOutOnceWhatWasSentTwice) {
    take("a");
    take("a");
    taker.end(DriverErrorResult::Success);
    EXPECT_THAT(answers(), ElementsAre("success")) << "one answer is for both";
    take("a");
    EXPECT_THAT(taker.texts, SizeIs(1));
    EXPECT_THAT(answers(), ElementsAre("success")) << "its sender has not heard the first one";
}

TEST_F(Desk, CarriesOutTwiceWhatHasNoId) {
    take("");
    take("");
    EXPECT_THAT(taker.texts, SizeIs(2));
}

TEST_F(Desk, ForgetsAnIdAfterAWhile) {
    take("a");
    taker.end(DriverErrorResult::Success);
    now += RecentCommands::memory + 1s;
    take("a");
    EXPECT_THAT(taker.texts, SizeIs(2));
}

TEST_F(Desk, RefusesMoreThanMayBeOpen) {
    for (std::size_t i = 0; i < CommandDesk::mostOpen; ++i)
        take("");
    EXPECT_THAT(answers(), IsEmpty());
    take("");
    EXPECT_THAT(answers(), ElementsAre("refused"));
}

TEST_F(Desk, AnswersWhatIsOpenAtItsEndAndNothingBehindThat) {
    take("a");
    desk.abandon();
    EXPECT_THAT(answers(), ElementsAre("channel error"));
    taker.end(DriverErrorResult::Success);
    EXPECT_THAT(answers(), IsEmpty());
}
