#include "EngineTest.h"

namespace {

using Halvex::DriverErrorResult;

struct Row {
    unsigned code;
    DriverErrorResult replyResult;
    quint64 answers, timeOuts, errors;
    const char* text;
    int level;
};

const Row rows[] = {
    {0, DriverErrorResult::Success, 1, 0, 0, "Request result : Success", 4},
    {1, DriverErrorResult::TimeOut, 0, 1, 0, "Request result : Timeout", 8},
    {2, DriverErrorResult::ChannelError, 0, 0, 1, "Request result : Chennel Error", 8},
    {3, DriverErrorResult::BadData, 0, 0, 1, "Request result : Bad Data", 8},
    {4, DriverErrorResult::BadData, 0, 0, 1, "Request result :  Bad Data", 8},
};

class ResultReportingTest : public EngineTest {
protected:
    void report(unsigned code, CReply* reply = nullptr) {
        SBusRequest made = request("poll");
        made.reply = reply;
        protocol->reportResult(code, made, reply, "a reason");
    }

    SBusRequest orphan() const {
        SBusRequest made = request("command");
        made.rtu = nullptr;
        return made;
    }
};

const QString orphanText = "Request callback failed (RTU handle is not found)";

} // namespace

TEST_F(ResultReportingTest, EachCodeHasItsLogLine) {
    for (const Row& row : rows) {
        log.clear();
        report(row.code);
        const QList<LogLine> lines = log.lines();
        ASSERT_EQ(lines.size(), 1) << row.code;
        EXPECT_EQ(lines[0].text, QString(row.text));
        EXPECT_EQ(static_cast<int>(lines[0].level), row.level) << row.code;
        EXPECT_EQ(lines[0].route, LogLine::Route::All);
        EXPECT_EQ(lines[0].channelId, channelId);
        EXPECT_EQ(lines[0].rtuId, rtuId);
    }
}

TEST_F(ResultReportingTest, EachCodeRaisesItsCounterOfTheRtu) {
    for (const Row& row : rows) {
        const RtuStatus before = rtu->GetRtuStatus();
        report(row.code);
        const RtuStatus after = rtu->GetRtuStatus();
        EXPECT_EQ(after.requests - before.requests, 1u) << row.code;
        EXPECT_EQ(after.answers - before.answers, row.answers) << row.code;
        EXPECT_EQ(after.timeOuts - before.timeOuts, row.timeOuts) << row.code;
        EXPECT_EQ(after.errors - before.errors, row.errors) << row.code;
    }
}

TEST_F(ResultReportingTest, EachCodeCompletesTheReplyWithItsResult) {
    for (const Row& row : rows) {
        CReply* const reply = takenReply();
        report(row.code, reply);
        EXPECT_EQ(reply->wait(0), row.replyResult) << row.code;
    }
}

TEST_F(ResultReportingTest, EachCodePutsTheChannelStatus) {
    for (const unsigned code : {0u, 1u, 2u, 3u, 4u, 5u, 99u}) {
        core.clear();
        report(code);
        EXPECT_EQ(core.channelStatusCount(), 1) << code;
    }
}

TEST_F(ResultReportingTest, AnUnknownCodeIsNotLoggedAndChangesNoCounter) {
    for (const unsigned code : {5u, 99u, 0xFFFFFFFFu})
        report(code);
    EXPECT_TRUE(log.lines().isEmpty());
    const RtuStatus status = rtu->GetRtuStatus();
    EXPECT_EQ(status.requests + status.answers + status.timeOuts + status.errors, 0u);
}

TEST_F(ResultReportingTest, AnUnknownCodeReleasesTheReplyAsASuccess) {
    CReply* const reply = takenReply();
    report(5, reply);
    EXPECT_EQ(reply->wait(0), DriverErrorResult::Success);
}

TEST_F(ResultReportingTest, AReplyNobodyWaitsForIsDestroyed) {
    for (const unsigned code : {0u, 1u, 2u, 3u, 4u, 5u}) {
        const int before = CReply::liveCount();
        CReply* const reply = takenReply();
        reply->release();
        EXPECT_EQ(CReply::liveCount(), before + 1);
        report(code, reply);
        EXPECT_EQ(CReply::liveCount(), before) << code;
    }
}

TEST_F(ResultReportingTest, ACompletedReplyIsGoneAfterItWasRead) {
    const int before = CReply::liveCount();
    CReply* const reply = takenReply();
    report(0, reply);
    reply->wait(0);
    EXPECT_EQ(CReply::liveCount(), before);
}

TEST_F(ResultReportingTest, TheReasonIsWrittenNowhere) {
    for (unsigned code = 0; code < 6; ++code)
        report(code);
    for (const LogLine& line : log.lines())
        EXPECT_FALSE(line.text.contains("reason")) << line.text;
}

TEST_F(ResultReportingTest, LeavesTheConnectionFlagsAsTheyAre) {
    for (const bool connected : {true, false})
        for (unsigned code = 0; code < 6; ++code) {
            rtu->SetConnect(connected, false);
            channel.SetConnect(connected);
            report(code);
            EXPECT_EQ(rtu->IsConnect(), connected) << code;
            EXPECT_EQ(channel.IsConnect(), connected) << code;
        }
}

TEST_F(ResultReportingTest, AConnectedRtusStatusIsTold) {
    report(0);
    EXPECT_EQ(core.rtuStatusCount(), 1);
}

TEST_F(ResultReportingTest, WithoutAnRtuTheReplyIsToldSo) {
    CReply* const reply = takenReply();
    SBusRequest made = orphan();
    made.reply = reply;
    protocol->reportResult(0, made, reply, {});
    EXPECT_EQ(reply->wait(0), DriverErrorResult::RtuNotFound);
}

TEST_F(ResultReportingTest, WithoutAnRtuAReplyNobodyWaitsForIsDestroyed) {
    const int before = CReply::liveCount();
    CReply* const reply = takenReply();
    reply->release();
    protocol->reportResult(0, orphan(), reply, {});
    EXPECT_EQ(CReply::liveCount(), before);
}

TEST_F(ResultReportingTest, WithoutAnRtuOneLineGoesToTheChannelsFile) {
    protocol->reportResult(0, orphan(), nullptr, {});
    const QList<LogLine> lines = log.lines();
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines[0].text, orphanText);
    EXPECT_EQ(lines[0].route, LogLine::Route::File);
    EXPECT_EQ(static_cast<int>(lines[0].level), 2);
    EXPECT_EQ(lines[0].channelId, channelId);
    EXPECT_EQ(lines[0].rtuId, 0);
}

TEST_F(ResultReportingTest, WithoutAnRtuNoStatusIsTouched) {
    protocol->reportResult(1, orphan(), nullptr, {});
    EXPECT_EQ(core.channelStatusCount(), 0);
    EXPECT_EQ(core.rtuStatusCount(), 0);
}

TEST_F(ResultReportingTest, AnOfflineCommandWithoutAnRtuIsToldSo) {
    protocol->setLink(nullptr);
    SBusRequest made = orphan();
    made.reply = takenReply();
    protocol->submitRequest(made);
    EXPECT_EQ(made.reply->wait(0), DriverErrorResult::RtuNotFound);
    EXPECT_EQ(log.texts(LogLine::Route::File), QStringList{orphanText});
}

TEST_F(ResultReportingTest, ATakenCommandWithoutAnRtuIsToldSo) {
    SBusRequest made = orphan();
    made.reply = takenReply();
    protocol->submitRequest(made);
    protocol->processNextRequest();
    EXPECT_EQ(made.reply->wait(0), DriverErrorResult::RtuNotFound);
    EXPECT_EQ(log.texts(LogLine::Route::File), QStringList{orphanText});
}

TEST_F(ResultReportingTest, TheWaitingSideMayGiveUpAtTheMomentOfTheResult) {
    const int before = CReply::liveCount();
    for (int i = 0; i < 500; ++i) {
        CReply* const reply = takenReply();
        std::thread waiting([reply] { reply->wait(0); });
        report(static_cast<unsigned>(i % 5), reply);
        waiting.join();
    }
    EXPECT_EQ(CReply::liveCount(), before);
}

TEST_F(ResultReportingTest, ARequestWithoutAnRtuIsLoggedWithoutAChannelToo) {
    ScriptedProtocol alone(nullptr);
    alone.reportResult(0, orphan(), nullptr, {});
    const QList<LogLine> lines = log.lines();
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines[0].text, orphanText);
    EXPECT_EQ(lines[0].channelId, 0);
}

TEST_F(ResultReportingTest, RtuStatusLogLineChannelStatusAndReplyComeInThisOrder) {
    QStringList order;
    core.onRtuStatus = [&](const RtuStatus&) { order << "RTU status"; };
    core.onChannelStatus = [&] { order << "channel status"; };
    const auto watcher = CLogger::GetInstance()->watchLines([&](const LogLine&) { order << "log line"; });
    for (const Row& row : rows) {
        order.clear();
        CReply* const reply = takenReply();
        reply->notify([&](DriverErrorResult) { order << "reply"; });
        report(row.code, reply);
        EXPECT_EQ(order, (QStringList{"RTU status", "log line", "channel status", "reply"})) << row.code;
    }
}

TEST_F(ResultReportingTest, AnUnknownCodePutsTheChannelStatusBeforeTheReply) {
    QStringList order;
    core.onRtuStatus = [&](const RtuStatus&) { order << "RTU status"; };
    core.onChannelStatus = [&] { order << "channel status"; };
    CReply* const reply = takenReply();
    reply->notify([&](DriverErrorResult) { order << "reply"; });
    report(5, reply);
    EXPECT_EQ(order, (QStringList{"channel status", "reply"}));
}

TEST_F(ResultReportingTest, WithoutAnRtuTheReplyComesBeforeTheLogLine) {
    QStringList order;
    const auto watcher = CLogger::GetInstance()->watchLines([&](const LogLine&) { order << "log line"; });
    CReply* const reply = takenReply();
    reply->notify([&](DriverErrorResult) { order << "reply"; });
    protocol->reportResult(0, orphan(), reply, {});
    EXPECT_EQ(order, (QStringList{"reply", "log line"}));
}

TEST_F(ResultReportingTest, AReplyThatHoldsAnErrorAlreadyKeepsItOnlyWhereNothingFailed) {
    for (const Row& row : rows) {
        CReply* const reply = takenReply();
        reply->errorResult = DriverErrorResult::PointNotFound;
        report(row.code, reply);
        EXPECT_EQ(reply->wait(0), row.code == 0 ? DriverErrorResult::PointNotFound : row.replyResult)
            << row.code;
    }
}

TEST_F(ResultReportingTest, TheReplyThatIsCompletedIsTheOneGivenAndNotTheRequests) {
    SBusRequest made = request("command");
    made.reply = takenReply();
    CReply* const given = takenReply();
    protocol->reportResult(1, made, given, {});
    EXPECT_EQ(given->wait(0), DriverErrorResult::TimeOut);
    EXPECT_EQ(made.reply->wait(0), std::nullopt);
}
