#include "EngineTest.h"

#include <atomic>

namespace {

using HandingOverTest = EngineTest;

} // namespace

TEST_F(HandingOverTest, PollsAreSentFirstInFirstOut) {
    protocol->queueRequest(request("first"));
    protocol->queueRequest(request("second"));
    protocol->queueRequest(request("third"));
    EXPECT_EQ(pendingInOrder(), (QStringList{"first", "second", "third"}));
}

TEST_F(HandingOverTest, CommandsAreSentLastInFirstOut) {
    protocol->submitRequest(request("first"));
    protocol->submitRequest(request("second"));
    protocol->submitRequest(request("third"));
    EXPECT_EQ(pendingInOrder(), (QStringList{"third", "second", "first"}));
}

TEST_F(HandingOverTest, ACommandIsSentBeforeThePollsThatWait) {
    protocol->queueRequest(request("poll"));
    protocol->submitRequest(request("command"));
    protocol->queueRequest(request("later poll"));
    EXPECT_EQ(pendingInOrder(), (QStringList{"command", "poll", "later poll"}));
}

TEST_F(HandingOverTest, ANewCommandDisplacesAnEqualCommandAndTakesTheFront) {
    protocol->submitRequest(request("output", {write(1)}));
    protocol->submitRequest(request("other"));
    protocol->submitRequest(request("output", {write(2)}));
    EXPECT_EQ(pendingInOrder(), (QStringList{"output", "other"}));
    EXPECT_FALSE(protocol->steps.contains("build w14@1 station 5"));
}

TEST_F(HandingOverTest, APollEqualToAPendingCommandIsDropped) {
    protocol->submitRequest(request("output", {write(1)}));
    protocol->queueRequest(request("output", {write(2)}));
    EXPECT_EQ(pendingInOrder(), QStringList{"output"});
    EXPECT_TRUE(protocol->steps.contains("build w14@1 station 5"));
}

TEST_F(HandingOverTest, APollEqualToAPendingPollIsDroppedAndTheOlderKeepsItsPlace) {
    protocol->queueRequest(request("poll", {write(1)}));
    protocol->queueRequest(request("other"));
    protocol->queueRequest(request("poll", {write(2)}));
    EXPECT_EQ(pendingInOrder(), (QStringList{"poll", "other"}));
    EXPECT_FALSE(protocol->steps.contains("build w14@2 station 5"));
}

TEST_F(HandingOverTest, PollsOfDifferentLengthAreBothKept) {
    protocol->queueRequest(request("poll", {write()}));
    protocol->queueRequest(request("poll", {write(), write()}));
    EXPECT_EQ(pendingInOrder(), (QStringList{"poll", "poll", "poll"}));
}

TEST_F(HandingOverTest, ADroppedPollReportsNothingAndLeavesItsReplyAlone) {
    SBusRequest poll = request("poll");
    protocol->queueRequest(poll);
    poll.reply = takenReply();
    protocol->queueRequest(poll);
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(poll.reply->wait(0), std::nullopt);
}

TEST_F(HandingOverTest, ATakenRequestIsPendingNoLonger) {
    protocol->queueRequest(request("poll"));
    protocol->processNextRequest();
    EXPECT_FALSE(protocol->containsRequest(request("poll")));
    protocol->queueRequest(request("poll"));
    EXPECT_TRUE(protocol->containsRequest(request("poll")));
}

TEST_F(HandingOverTest, ContainsLooksForAnEqualRequest) {
    EXPECT_FALSE(protocol->containsRequest(request("poll")));
    protocol->queueRequest(request("poll", {write(1)}));
    EXPECT_TRUE(protocol->containsRequest(request("poll", {write(2)})));
    EXPECT_FALSE(protocol->containsRequest(request("poll", {})));
    EXPECT_FALSE(protocol->containsRequest(request("other")));
}

TEST_F(HandingOverTest, RemoveTakesTheEqualRequestOutAndCountsIt) {
    protocol->queueRequest(request("poll"));
    protocol->queueRequest(request("other"));
    EXPECT_EQ(protocol->removeRequest(request("poll")), 1);
    EXPECT_EQ(protocol->removeRequest(request("poll")), 0);
    EXPECT_EQ(pendingInOrder(), QStringList{"other"});
}

TEST_F(HandingOverTest, ThePendingRequestIsACopy) {
    SBusRequest poll = request("poll", {write(1)});
    protocol->queueRequest(poll);
    poll.name = "renamed";
    poll.items[0].address = 2;
    EXPECT_EQ(pendingInOrder(), QStringList{"poll"});
    EXPECT_TRUE(protocol->steps.contains("build w14@1 station 5"));
}

TEST_F(HandingOverTest, IsOfflineUntilALinkIsSet) {
    ScriptedProtocol fresh(&channel);
    fresh.queueRequest(request("poll"));
    EXPECT_FALSE(fresh.containsRequest(request("poll")));
}

TEST_F(HandingOverTest, APollOfferedWhileOfflineLeavesNoTrace) {
    protocol->setLink(nullptr);
    SBusRequest poll = request("poll");
    poll.reply = takenReply();
    protocol->queueRequest(poll);
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(core.channelStatusCount(), 0);
    EXPECT_FALSE(protocol->containsRequest(poll));
    EXPECT_EQ(poll.reply->wait(0), std::nullopt);
}

TEST_F(HandingOverTest, ACommandOfferedWhileOfflineFailsAtOnceAsAChannelError) {
    protocol->setLink(nullptr);
    SBusRequest command = request("command");
    command.reply = takenReply();
    protocol->submitRequest(command);
    EXPECT_EQ(command.reply->wait(0), Halvex::DriverErrorResult::ChannelError);
    EXPECT_EQ(logTexts(), QStringList{"Request result : Chennel Error"});
    EXPECT_EQ(rtu->GetRtuStatus().errors, 1u);
    EXPECT_FALSE(protocol->containsRequest(command));
}

TEST_F(HandingOverTest, TheReasonOfAnOfflineCommandIsWrittenNowhere) {
    protocol->setLink(nullptr);
    protocol->submitRequest(request("command"));
    for (const LogLine& line : log.lines())
        EXPECT_FALSE(line.text.contains("Offline")) << line.text;
    EXPECT_EQ(log.lines().size(), 1);
}

TEST_F(HandingOverTest, GoesOnWhenTheLinkIsBack) {
    protocol->setLink(nullptr);
    protocol->setLink(link);
    protocol->queueRequest(request("poll"));
    EXPECT_EQ(pendingInOrder(), QStringList{"poll"});
}

TEST_F(HandingOverTest, AnOfflineCommandIsReportedWithTheTableReleased) {
    protocol->setLink(nullptr);
    int seen = 0;
    const auto watcher = CLogger::GetInstance()->watchLines([&](const LogLine&) {
        ++seen;
        protocol->queueRequest(request("poll"));
    });
    expectNoDeadlock([&] { protocol->submitRequest(request("command")); });
    EXPECT_EQ(seen, 1);
}

TEST_F(HandingOverTest, TheTableIsFreeWhileARequestIsExchanged) {
    protocol->duringExchange = [this] {
        if (protocol->exchanged.size() > 1)
            return;
        protocol->queueRequest(request("poll"));
        protocol->submitRequest(request("command"));
    };
    protocol->queueRequest(request("running"));
    expectNoDeadlock([this] { runAll(); });
    EXPECT_EQ(protocol->exchanged, (QStringList{"running", "command", "poll"}));
}

TEST_F(HandingOverTest, TheTableIsFreeWhileAResultIsReported) {
    const auto watcher = CLogger::GetInstance()->watchLines([&](const LogLine&) {
        if (protocol->exchanged.size() == 1)
            protocol->queueRequest(request("next"));
    });
    protocol->queueRequest(request("running"));
    expectNoDeadlock([this] { runAll(); });
    EXPECT_EQ(protocol->exchanged, (QStringList{"running", "next"}));
}

TEST_F(HandingOverTest, ARequestBeingExchangedIsNotPending) {
    protocol->duringExchange = [this] { EXPECT_FALSE(protocol->containsRequest(request("running"))); };
    protocol->queueRequest(request("running"));
    runAll();
    EXPECT_EQ(protocol->exchanged.size(), 1);
}

TEST_F(HandingOverTest, PendingRequestsEndUnreportedWithTheEngine) {
    SBusRequest command = request("command");
    command.reply = takenReply();
    protocol->submitRequest(command);
    protocol->queueRequest(request("poll"));
    delete protocol;
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(command.reply->wait(0), std::nullopt);
}

TEST_F(HandingOverTest, TheEngineIsTheChannelsChild) {
    EXPECT_EQ(protocol->parent(), &channel);
}

TEST_F(HandingOverTest, ProducersOnManyThreadsLoseNothing) {
    constexpr int producers = 4;
    constexpr int requestsEach = 200;
    std::atomic<int> running{producers};
    std::vector<std::thread> threads;
    threads.reserve(producers);
    for (int producer = 0; producer < producers; ++producer)
        threads.emplace_back([&, producer] {
            for (int i = 0; i < requestsEach; ++i) {
                const SBusRequest made = request(QStringLiteral("%1/%2").arg(producer).arg(i));
                if (i % 2 == 0)
                    protocol->queueRequest(made);
                else
                    protocol->submitRequest(made);
            }
            --running;
        });
    while (running > 0)
        protocol->processNextRequest();
    for (std::thread& thread : threads)
        thread.join();
    runAll(producers * requestsEach);

    QStringList exchanged = protocol->exchanged;
    EXPECT_EQ(exchanged.size(), producers * requestsEach);
    EXPECT_EQ(exchanged.removeDuplicates(), 0);
}
