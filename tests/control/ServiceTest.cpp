#include "ServiceByLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Result = Halvex::DriverErrorResult;

namespace {

class Service : public ServiceByLines {};

const char* const writeRun = R"({"id":1,"do":"write","values":[{"point":"hill/RUN","value":1}]})";

} // namespace

TEST_F(Service, SwitchesAStatusPoint) {
    EXPECT_EQ(
        askOne(writeRun),
        R"({"id":1,"ok":true,"results":[{"number":0,"point":"hill/RUN","result":"success","value":1}]})");
    ASSERT_THAT(fake.commands(), SizeIs(1));
    EXPECT_EQ(fake.commands()[0].channelId, 5);
    EXPECT_EQ(fake.commands()[0].rtuId, 1);
    const auto action = std::get<SwitchPoint>(fake.commands()[0].action);
    EXPECT_EQ(action.point, 1U);
    EXPECT_TRUE(action.on);
}

TEST_F(Service, SetsAnalogPointsInTheirOrder) {
    askOne(R"({"do":"write","values":[{"point":"pump-house/LEVEL","value":-3},)"
           R"({"point":"pump-house/FLOW","value":1.25}]})");
    ASSERT_THAT(fake.commands(), SizeIs(2));
    EXPECT_EQ(std::get<SetPoint>(fake.commands()[0].action).point, 3U);
    EXPECT_EQ(std::get<SetPoint>(fake.commands()[0].action).value, -3);
    EXPECT_EQ(std::get<SetPoint>(fake.commands()[1].action).point, 2U);
    EXPECT_EQ(std::get<SetPoint>(fake.commands()[1].action).value, 1.25);
}

TEST_F(Service, TellsEveryResultInWordsAndAsNumber) {
    const std::pair<Result, const char*> results[] = {
        {Result::NotSupported, R"("number":10000,"point":"hill/RUN","result":"not supported")"},
        {Result::BadData, R"("number":10001,"point":"hill/RUN","result":"bad data")"},
        {Result::ChannelError, R"("number":10002,"point":"hill/RUN","result":"channel error")"},
        {Result::TimeOut, R"("number":10003,"point":"hill/RUN","result":"time-out")"},
        {Result::RtuNotFound, R"("number":10006,"point":"hill/RUN","result":"no such RTU")"},
        {Result::PointNotFound, R"("number":10007,"point":"hill/RUN","result":"no such point")"},
        {Result::UnsupportedAddress, R"("number":10008,"point":"hill/RUN","result":"address not writable")"}};
    for (const auto& [result, text] : results) {
        fake.answerWith(result);
        EXPECT_THAT(askOne(writeRun), AllOf(HasSubstr(text), HasSubstr(R"("ok":false)")));
    }
}

TEST_F(Service, TellsThatTheControllerRefused) {
    fake.answerWith(Result::BadData, true);
    EXPECT_THAT(askOne(writeRun), HasSubstr(R"("number":10001,"point":"hill/RUN","result":"refused")"));
    fake.answerWith(Result::Success, true); // an older request was
    EXPECT_THAT(askOne(writeRun), HasSubstr(R"("result":"success")"));
}

TEST_F(Service, TellsThatTheHostRefused) {
    fake.refuseCommands("1000 commands wait for RTU 1 \"hill\"");
    EXPECT_THAT(askOne(writeRun), AllOf(HasSubstr(R"("number":null)"), HasSubstr(R"("result":"refused")"),
                                        HasSubstr(R"("why":"1000 commands wait for RTU 1 \"hill\"")")));
}

TEST_F(Service, WritesNothingWhenANameIsWrong) {
    EXPECT_EQ(
        askOne(R"({"id":"a","do":"write","values":[{"point":"hill/RUN","value":1},)"
               R"({"point":"pump-house/VALFE","value":1}]})"),
        R"({"code":"unknown","error":"no point \"pump-house/VALFE\"; near it: \"pump-house/VALVE\"; nothing )"
        R"(was written","id":"a","ok":false})");
    EXPECT_THAT(askOne(R"({"do":"write","values":[{"point":"pump-house/RUN","value":1}]})"),
                HasSubstr("there are 2 of"));
    EXPECT_THAT(fake.commands(), IsEmpty());
}

TEST_F(Service, WritesNothingToADisabledRtuAndOnlyBitsToAStatusPoint) {
    EXPECT_THAT(askOne(R"({"do":"write","values":[{"point":"tank/LEVEL","value":1}]})"),
                HasSubstr("\\\"tank\\\" is disabled in the site file"));
    EXPECT_THAT(askOne(R"({"do":"write","values":[{"point":"hill/RUN","value":2}]})"),
                HasSubstr("takes 0 or 1"));
    EXPECT_THAT(fake.commands(), IsEmpty());
}

TEST_F(Service, AnswersAWriteOnceAllItsCommandsHaveEnded) {
    fake.hold();
    EXPECT_THAT(ask(writeRun), IsEmpty());
    EXPECT_EQ(woken, 0);
    fake.release();
    EXPECT_EQ(woken, 1);
    service.answerFinished();
    EXPECT_THAT(sent[1], ElementsAre(HasSubstr(R"("result":"success")")));
}

TEST_F(Service, AnswersSomeClientsWhileOthersWait) {
    fake.hold();
    ask(writeRun, 1);
    EXPECT_THAT(ask(R"({"do":"status"})", 2), SizeIs(1));
    EXPECT_THAT(ask(R"({"do":"status"})", 1), SizeIs(1));
}

TEST_F(Service, TakesNoMoreThanItsLimitOfOpenCommandsOfAllClients) {
    fake.hold();
    QByteArray values = R"({"point":"hill/RUN","value":1})";
    for (int i = 1; i < 500; ++i)
        values += R"(,{"point":"hill/RUN","value":1})";
    const QByteArray request = R"({"do":"write","values":[)" + values + "]}";
    ClientId client = 0;
    for (std::size_t open = 0; open < ControlService::mostOpenCommands; open += 500)
        EXPECT_THAT(ask(request, ++client), IsEmpty());
    EXPECT_THAT(askOne(writeRun, ++client), AllOf(HasSubstr("\"code\":\"busy\""), HasSubstr("10000")));
    service.forget(1); // what it had open counts no longer
    EXPECT_THAT(ask(writeRun, client), IsEmpty());
    fake.release();
    service.answerFinished();
    fake.hold();
    for (std::size_t open = 0; open < ControlService::mostOpenCommands; open += 500)
        EXPECT_THAT(ask(request, ++client), IsEmpty()); // all have ended: there is room for as many again
    fake.release();
}

TEST_F(Service, LetsAReaderAskButNotCommand) {
    service.allowReadingAlone(1);
    for (const char* const request : {R"({"id":7,"do":"poll"})", R"({"id":7,"do":"time-sync"})",
                                      R"({"id":7,"do":"write","values":[{"point":"hill/RUN","value":1}]})"})
        EXPECT_THAT(askOne(request), AllOf(HasSubstr("\"code\":\"permission\""), HasSubstr("\"id\":7")));
    EXPECT_THAT(fake.commands(), IsEmpty());
    EXPECT_THAT(fake.polls(), IsEmpty());
    EXPECT_THAT(askOne(R"({"do":"status"})"), HasSubstr("channels"));
    EXPECT_THAT(askOne(R"({"do":"trace"})"), HasSubstr("\"ok\":true"));
    EXPECT_THAT(askOne(writeRun, 2), HasSubstr("success")); // another client
}

TEST_F(Service, TakesNoMoreThanItsLimitOfOpenRequestsOfAClient) {
    fake.hold();
    for (std::size_t i = 0; i < ControlService::mostOpenRequests; ++i)
        EXPECT_THAT(ask(writeRun), IsEmpty());
    EXPECT_THAT(askOne(writeRun), HasSubstr(R"("code":"busy")"));
    EXPECT_THAT(ask(writeRun, 2), IsEmpty()); // another client's
    fake.release();
    service.answerFinished();
    EXPECT_THAT(askOne(writeRun), HasSubstr(R"("ok":true)"));
}

TEST_F(Service, WritesNothingWhenAValueDoesNotFit) {
    for (const char* const value : {"0.999", "1.5", "-1.7", "2147483648"})
        EXPECT_THAT(askOne(R"({"do":"write","values":[{"point":"hill/RUN","value":1},)"
                           R"({"point":"waterworks/pump-house/LEVEL","value":)" +
                           QByteArray(value) + "}]}"),
                    AllOf(HasSubstr(R"("code":"unknown")"), HasSubstr("does not fit a register"),
                          HasSubstr("nothing was written")))
            << value;
    EXPECT_THAT(fake.commands(), IsEmpty());
}

TEST_F(Service, TellsTheValueThatTheControllerHolds) {
    const auto valueOf = [this](const QByteArray& value) {
        return askOne(R"({"do":"write","values":[{"point":"waterworks/pump-house/FLOW","value":)" + value +
                      "}]}");
    };
    EXPECT_THAT(valueOf("16777217"), HasSubstr(R"("value":16777216})"));
    EXPECT_THAT(valueOf("12.3"), HasSubstr(R"("value":12.3})"));
    EXPECT_THAT(valueOf("0.1000000001"), HasSubstr(R"("value":0.1})"));
}

TEST_F(Service, TakesAndTellsValuesInTheUnitOfThePoint) {
    Engineering engineering;
    engineering.scaling = Scaling(0.1, -20);
    engineering.unit = "m";
    site.channels[0].rtus[0].points[2].engineering = std::make_shared<const Engineering>(engineering);
    const auto write = [this](const QByteArray& value) {
        return askOne(R"({"do":"write","values":[{"point":"waterworks/pump-house/LEVEL","value":)" + value +
                      "}]}");
    };
    EXPECT_THAT(write("21.5"), AllOf(HasSubstr(R"("raw":415,)"), HasSubstr(R"("unit":"m","value":21.5})")));
    EXPECT_THAT(write("21.57"),
                HasSubstr(R"(LEVEL\" = 21.57: the value does not fit a register; give 21.5 or )"
                          "21.6; nothing was written"));
    ASSERT_THAT(fake.commands(), SizeIs(1));
    EXPECT_EQ(std::get<SetPoint>(fake.commands()[0].action).value, 21.5) << "scaled back behind the service";
}

TEST_F(Service, ForgetsTheWaitOfAClientThatIsGone) {
    fake.hold();
    ask(writeRun);
    service.forget(1);
    fake.release();
    service.answerFinished();
    EXPECT_THAT(sent[1], IsEmpty());
}

TEST_F(Service, SetsTheClockOfEveryEnabledRtuThatCanTakeIt) {
    EXPECT_THAT(askOne(R"({"do":"time-sync"})"),
                AllOf(HasSubstr(R"({"number":0,"result":"success","rtu":"hill"})"), HasSubstr(R"("ok":true)"),
                      HasSubstr(R"({"number":null,"result":"left out","rtu":"waterworks/pump-house",)"
                                R"("why":"not possible on Ethernet; set the clock over a serial line"})")));
    ASSERT_THAT(fake.commands(), SizeIs(2));
    for (const Command& command : fake.commands())
        EXPECT_TRUE(std::holds_alternative<SynchroniseClock>(command.action));
}

TEST_F(Service, SetsTheClockOfOneRtu) {
    EXPECT_EQ(askOne(R"({"do":"time-sync","rtus":["hill"]})"),
              R"({"ok":true,"results":[{"number":0,"result":"success","rtu":"hill"}]})");
    EXPECT_THAT(askOne(R"({"do":"time-sync","rtus":["tank"]})"), HasSubstr("disabled"));
    EXPECT_THAT(askOne(R"({"do":"time-sync","rtus":["waterworks/pump-house"]})"),
                AllOf(HasSubstr(R"("ok":false)"), HasSubstr("left out")));
}

TEST_F(Service, AsksForPolls) {
    EXPECT_EQ(askOne(R"({"id":2,"do":"poll","rtus":["hill"]})"),
              R"({"id":2,"ok":true,"results":[{"number":0,"result":"asked for","rtu":"hill"}]})");
    EXPECT_THAT(fake.polls(), ElementsAre(std::pair(5, 1)));
    askOne(R"({"do":"poll"})");
    EXPECT_THAT(fake.polls(), SizeIs(4));
    EXPECT_THAT(askOne(R"({"do":"poll","rtus":["hull"]})"), HasSubstr("near it: \\\"hill\\\""));
    fake.answerWith(Result::ChannelError);
    EXPECT_THAT(askOne(R"({"do":"poll","rtus":["hill"]})"),
                AllOf(HasSubstr("channel error"), HasSubstr(R"("ok":false)")));
}

TEST_F(Service, TellsTheStatusOfChannelsAndRtus) {
    publish(4, 7, 1, 1);
    publish(4, 7, 2, 0);
    publish(4, 7, 2, 0, PointQuality::Bad);
    const std::string status = askOne(R"({"id":9,"do":"status"})");
    EXPECT_THAT(
        status,
        AllOf(HasSubstr(R"("id":9)"), HasSubstr(R"("end":"udp://127.0.0.1:9")"),
              HasSubstr(R"("name":"waterworks")"), HasSubstr(R"("station":5)"),
              HasSubstr(R"("answers":12,"attempts":14,"bad_points":1,"connected":true,"enabled":true)"),
              HasSubstr(R"("good_points":1)"), HasSubstr(R"("last_round_trip_ms":1.5)"),
              HasSubstr(R"("never_read_points":1)")));
}

TEST_F(Service, CountsFiguresAnewOnlyAfterAWhile) {
    ask(R"({"do":"status"})");
    ask(R"({"do":"status"})");
    EXPECT_EQ(fake.figuresAsked(), 1);
    time += std::chrono::milliseconds(100);
    ask(R"({"do":"status"})");
    EXPECT_EQ(fake.figuresAsked(), 2);
}

TEST_F(Service, AnswersEachMalformedLine) {
    EXPECT_THAT(askOne("rubbish"), AllOf(HasSubstr(R"("code":"malformed")"), HasSubstr(R"("ok":false)")));
    EXPECT_THAT(askOne(R"({"id":5,"do":"fly"})"), AllOf(HasSubstr(R"("id":5)"), HasSubstr("malformed")));
    sent.clear();
    service.handleTooLongLine(1);
    EXPECT_THAT(sent[1], ElementsAre(AllOf(HasSubstr("65536 bytes"), HasSubstr("malformed"))));
}

TEST_F(Service, TellsWhoWaitsThatTheHostEnds) {
    fake.hold();
    ask(writeRun);
    ask(R"({"id":"x","do":"time-sync"})", 2);
    sent.clear();
    service.end();
    EXPECT_THAT(sent[1], ElementsAre(AllOf(HasSubstr(R"("code":"ending")"), HasSubstr(R"("id":1)"))));
    EXPECT_THAT(sent[2], ElementsAre(AllOf(HasSubstr(R"("code":"ending")"), HasSubstr(R"("id":"x")"))));
}
