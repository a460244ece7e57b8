#include "CommandBench.h"

using Halvex::DriverErrorResult;

namespace {

const QString waitingPoll = QStringLiteral("waiting poll");
constexpr int patience = 10'000; // milliseconds; replies here are complete before anybody waits

SentRequest onlyOne(const QList<SentRequest>& sent) {
    EXPECT_EQ(sent.size(), 1);
    return sent.isEmpty() ? SentRequest{} : sent.first();
}

} // namespace

CommandBench::CommandBench() {
    releases.setProtocol(protocol);
    rtu->attachProtocol(protocol, &releases);
    channel.SetConnect(true);
    log.clear();
}

QList<SentRequest> CommandBench::sendPending() {
    QList<SentRequest> sent;
    // More turns than any test has requests pending.
    for (int turn = 0; turn < 20; ++turn) {
        protocol->exchanges.clear();
        protocol->processNextRequest();
        if (protocol->exchanges.isEmpty())
            continue;
        const RecordingProtocol::Exchange& first = protocol->exchanges.first();
        sent << SentRequest{first.rtu, first.poll, first.reply, protocol->items()};
    }
    protocol->exchanges.clear();
    return sent;
}

QStringList CommandBench::namesSent() {
    QStringList names;
    for (const SentRequest& request : sendPending())
        names << request.name;
    return names;
}

SentRequest CommandBench::sendOnlyRequest() {
    return onlyOne(sendPending());
}

QList<SentRequest> CommandBench::sendAfter(int milliseconds) {
    now += milliseconds;
    releases.dispatchDue();
    return sendPending();
}

SentRequest CommandBench::sendOnlyAfter(int milliseconds) {
    return onlyOne(sendAfter(milliseconds));
}

void CommandBench::expectFileLines(const QStringList& texts) const {
    QStringList logged;
    for (const LogLine& line : log.lines()) {
        logged << line.text;
        EXPECT_EQ(line.route, LogLine::Route::File) << line.text;
        EXPECT_EQ(line.channelId, channelId) << line.text;
        EXPECT_EQ(line.rtuId, 0) << line.text;
        EXPECT_EQ(static_cast<int>(line.level), 2) << line.text;
    }
    EXPECT_EQ(logged, texts);
}

void CommandBench::expectRefused(const Command& command, int result, const QStringList& texts) {
    const int repliesBefore = CReply::liveCount();
    const quint64 endedBefore = endedRequests();
    for (CReply* reply : {new CReply(&channel), static_cast<CReply*>(nullptr)}) {
        log.clear();
        EXPECT_EQ(command(reply), result);
        expectFileLines(texts);
        EXPECT_TRUE(sendAfter(0).isEmpty());
        EXPECT_TRUE(sendAfter(3'600'000).isEmpty());
        EXPECT_EQ(endedRequests(), endedBefore) << "something was queued";
        if (reply != nullptr) {
            EXPECT_EQ(reply->errorResult, DriverErrorResult::Success);
            EXPECT_EQ(reply->wait(0), std::nullopt) << "the reply was completed";
        }
        EXPECT_EQ(CReply::liveCount(), repliesBefore) << "the reply was taken over";
    }
}

void CommandBench::expectNeedsAConnectedChannel(const Command& command) {
    channel.SetConnect(false);
    protocol->setLink(&link);
    expectRefused(command, notConnected, {});
    channel.SetConnect(true);
}

void CommandBench::expectTakesItsReplyOverOnce(const Command& command) {
    const int before = CReply::liveCount();
    auto* left = new CReply(&channel);
    EXPECT_EQ(command(left), accepted);
    left->release();
    EXPECT_EQ(CReply::liveCount(), before + 1) << "the reply was not taken over";
    EXPECT_EQ(left->errorResult, DriverErrorResult::Success);
    runPending();
    EXPECT_EQ(CReply::liveCount(), before);

    auto* awaited = new CReply(&channel);
    EXPECT_EQ(command(awaited), accepted);
    runPending();
    EXPECT_EQ(awaited->wait(patience), DriverErrorResult::Success);
    EXPECT_EQ(CReply::liveCount(), before) << "the reply was taken over more than once";
}

void CommandBench::expectCompletesItsReplyWithTheOutcome(const Command& command) {
    auto* good = new CReply(&channel);
    EXPECT_EQ(command(good), accepted);
    EXPECT_EQ(sendOnlyRequest().reply, good);
    EXPECT_EQ(good->wait(patience), DriverErrorResult::Success);

    protocol->outcome = SBusTimeOut;
    auto* late = new CReply(&channel);
    EXPECT_EQ(command(late), accepted);
    EXPECT_EQ(sendOnlyRequest().reply, late);
    EXPECT_EQ(late->wait(patience), DriverErrorResult::TimeOut);
    protocol->outcome = SBusSuccess;
}

void CommandBench::expectRunsWithoutAReply(const Command& command) {
    const int before = CReply::liveCount();
    EXPECT_EQ(command(nullptr), accepted);
    EXPECT_EQ(sendOnlyRequest().reply, nullptr);
    EXPECT_EQ(CReply::liveCount(), before);
}

void CommandBench::queueWaitingPoll() {
    SBusRequest poll;
    poll.rtu = rtu;
    poll.name = waitingPoll;
    poll.items << readItem(6, 1, 0);
    protocol->queueRequest(poll);
}

void CommandBench::expectGoesAheadOfWaitingPolls(const Command& command) {
    queueWaitingPoll();
    EXPECT_EQ(command(nullptr), accepted);
    const QStringList names = namesSent();
    ASSERT_EQ(names.size(), 2);
    EXPECT_NE(names[0], waitingPoll);
    EXPECT_EQ(names[1], waitingPoll);
}

void CommandBench::expectReportsAMissingLink(const Command& command) {
    protocol->setLink(nullptr);
    log.clear();
    const int repliesBefore = CReply::liveCount();
    auto* reply = new CReply(&channel);
    EXPECT_EQ(command(reply), accepted);
    EXPECT_EQ(reply->wait(patience), DriverErrorResult::ChannelError);
    EXPECT_EQ(CReply::liveCount(), repliesBefore) << "the reply was taken over after its completion";
    EXPECT_EQ(command(nullptr), accepted);
    const QString report = QStringLiteral("Request result : Chennel Error");
    EXPECT_EQ(log.texts(LogLine::Route::All), (QStringList{report, report}));
    EXPECT_EQ(log.texts(LogLine::Route::File), QStringList{});
    protocol->setLink(&link);
    EXPECT_TRUE(sendPending().isEmpty()) << "kept for a later link";
}
