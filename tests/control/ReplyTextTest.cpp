#include "cli/ReplyText.h"
#include "FakeHost.h"
#include "cli/CtlCommand.h"
#include "services/control/Reply.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What the client shows of the replies.

using namespace host;
using testing::HasSubstr;

namespace {

QJsonObject json(const QByteArray& line) {
    const QJsonDocument document = QJsonDocument::fromJson(line);
    EXPECT_TRUE(document.isObject()) << line.toStdString();
    return document.object();
}

ExitStatus statusFor(const std::vector<const char*>& results) {
    QByteArray list;
    for (const char* const result : results)
        list += (list.isEmpty() ? "" : ",") + QByteArray(result);
    return judgeReply(json("{\"ok\":false,\"results\":[" + list + "]}"));
}

constexpr char success[] = R"({"result":"success","number":0})";
constexpr char timeOut[] = R"({"result":"time-out","number":10003})";
constexpr char refused[] = R"({"result":"refused","number":10001})";
constexpr char hostRefused[] = R"({"result":"refused","number":null})";
constexpr char notWritable[] = R"({"result":"address not writable","number":10008})";

} // namespace

TEST(ControlReplyText, TellsALineForEachResult) {
    EXPECT_EQ(
        resultsText(
            json(R"({"results":[{"point":"a/X","value":1,"result":"success","number":0},)"
                 R"({"point":"a/Y","value":2.5,"result":"time-out","number":10003},)"
                 R"({"point":"a/Z","value":3,"result":"refused","number":null,"why":"too many wait"},)"
                 R"({"rtu":"b","result":"asked for","number":0}]})")),
        "a/X = 1  success\na/Y = 2.5  time-out (10003)\na/Z = 3  refused: too many wait\nb  asked for\n");
}

TEST(ControlReplyText, TellsUnitAndRawNumber) {
    EXPECT_EQ(resultsText(json(R"({"results":[{"point":"a/X","value":21.5,"unit":"m","raw":415,)"
                               R"("result":"success","number":0}]})")),
              "a/X = 21.5 m (raw 415)  success\n");
    EXPECT_EQ(resultsText(json(R"({"results":[{"point":"a/X","value":21.5,"unit":"m","raw":21.5,)"
                               R"("result":"success","number":0}]})")),
              "a/X = 21.5 m  success\n");
    EXPECT_THAT(changeText(json(R"({"time":"2026-11-21T10:30:00.125Z","rtu":"a","name":"X","address":"R1",)"
                                R"("value":21.5,"unit":"m","raw":415,"quality":"good"})")),
                HasSubstr("a/X (R1) = 21.5 m  good"));
}

TEST(ControlReplyText, ObeysNoControlCharacterOfAReply) {
    EXPECT_EQ(resultsText(json(R"({"results":[{"point":"a\u001b[2J","result":"refused","number":null,)"
                               R"("why":"x\ny\u009b"}]})")),
              "a\\x1B[2J  refused: x\\x0Ay\\x9B\n");
    EXPECT_EQ(changeText(json(R"({"rtu":"a","name":"b\u0007","address":"R1","quality":"good","value":1})"))
                  .substr(0, 100)
                  .find('\x07'),
              std::string::npos);
    EXPECT_EQ(statusText(json(R"({"services":{"a\u001b[2J":{"b\n_c\u009b":1}}})")),
              "a\\x1B[2J  b\\x0A c\\x9B 1\n");
}

TEST(ControlReplyText, TellsTheStatusAsATable) {
    const Site site = controlSite();
    const FakeHost fake(site);
    const HostFigures figures = fake.siteFigures();
    const std::string table = statusText(statusParts(figures));
    EXPECT_EQ(
        table.substr(0, table.find("reservoirs")),
        "waterworks  SBus-Ethernet  udp://127.0.0.1:9  connected\n"
        " RTU         station  state      requests  attempts  answers  time-outs  errors     last  slowest  "
        "good  bad  refused  never read\n"
        " pump-house        5  connected         0        14       12          0       0  1.50 ms  0.00 ms  "
        "   0    0        0           3\n");
    EXPECT_THAT(table, HasSubstr("disabled"));
}

TEST(ControlReplyText, TellsWhatTheServicesTellOfThemselves) {
    HostFigures figures;
    figures.services = {
        {"pulses", {{"watched", 2}, {"switched off", 1}}}, {"capture", {{"lost", 7}}}, {"control", {}}};
    const QJsonObject parts = statusParts(figures);
    EXPECT_EQ(QJsonDocument(parts).toJson(QJsonDocument::Compact),
              R"({"channels":[],"services":{"capture":{"lost":7},"pulses":{"switched_off":1,"watched":2}}})");
    EXPECT_EQ(statusText(parts), "capture  lost 7\npulses  switched off 1  watched 2\n");
}

TEST(ControlReplyText, TellsAChangeAsALine) {
    EXPECT_THAT(changeText(json(R"({"time":"2026-11-21T09:30:00.125Z","channel":"c","rtu":"hill","id":1,)"
                                R"("name":"RUN","address":"O1","value":1,"quality":"good"})")),
                testing::AllOf(HasSubstr("30:00.125"), testing::EndsWith("  hill/RUN (O1) = 1  good")));
    EXPECT_THAT(changeText(json(R"({"time":"2026-11-21T09:30:00.125Z","channel":"c","rtu":"hill","id":1,)"
                                R"("name":"RUN","address":"O1","value":null,"quality":"never read"})")),
                testing::AllOf(HasSubstr("30:00.125"), testing::EndsWith("  hill/RUN (O1)  never read")));
}

TEST(ControlReplyText, JudgesResults) {
    EXPECT_EQ(statusFor({success, success}), ExitStatus::Good);
    EXPECT_EQ(statusFor({}), ExitStatus::Good);
    EXPECT_EQ(statusFor({success, timeOut}), ExitStatus::SomeElements);
    EXPECT_EQ(statusFor({success, refused}), ExitStatus::SomeElements);
    EXPECT_EQ(statusFor({timeOut, refused}), ExitStatus::CommunicationFailed);
    EXPECT_EQ(statusFor({refused, hostRefused, notWritable}), ExitStatus::Refused);
}

TEST(ControlReplyText, LeavesWhatIsNotPossibleOutOfTheJudgement) {
    const auto judge = [](const char* results) {
        return judgeReply(json(QByteArray(R"({"ok":true,"results":[)") + results + "]}"));
    };
    EXPECT_EQ(judge(R"({"number":0,"result":"success"},{"number":null,"result":"left out"})"),
              ExitStatus::Good);
    EXPECT_EQ(judge(R"({"number":null,"result":"left out"})"), ExitStatus::Refused);
    EXPECT_EQ(
        judge(R"({"number":0},{"number":10003,"result":"time-out"},{"number":null,"result":"left out"})"),
        ExitStatus::SomeElements);
}

TEST(ControlReplyText, JudgesRepliesWithoutResults) {
    EXPECT_EQ(judgeReply(json(R"({"ok":true,"channels":[]})")), ExitStatus::Good);
    EXPECT_EQ(judgeReply(json(errorReply({}, ReplyFault::Unknown, "x"))), ExitStatus::Configuration);
    EXPECT_EQ(judgeReply(json(errorReply({}, ReplyFault::Malformed, "x"))), ExitStatus::Configuration);
    EXPECT_EQ(judgeReply(json(errorReply({}, ReplyFault::Busy, "x"))), ExitStatus::Refused);
    EXPECT_EQ(judgeReply(json(errorReply({}, ReplyFault::Ending, "x"))), ExitStatus::CommunicationFailed);
}

TEST(ControlArguments, AreAPointAndItsValue) {
    const std::pair<const char*, double> good[] = {{"a/X=1", 1},     {"a/X=-2.5", -2.5}, {"a/X=on", 1},
                                                   {"a/X=false", 0}, {"a/X=ON", 1},      {"a/X=Off", 0},
                                                   {"a/X=1e3", 1000}};
    for (const auto& [text, value] : good) {
        ASSERT_TRUE(parsePointValue(text)) << text;
        EXPECT_EQ(parsePointValue(text)->point, "a/X");
        EXPECT_EQ(parsePointValue(text)->value, value) << text;
    }
    EXPECT_EQ(parsePointValue("a/X=Y=1")->point, "a/X=Y");
    for (const char* const text : {"", "a/X", "=1", "a/X=", "a/X=one", "a/X=1x", "a/X=inf", "a/X=nan"})
        EXPECT_FALSE(parsePointValue(text)) << text;
}
