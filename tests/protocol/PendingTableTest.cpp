#include "EngineTest.h"

#include <atomic>
#include <list>

// The table itself, for what its operations cannot bring about. An explicit instantiation may name a
// private member.
std::list<SBusRequest>& pendingOf(SBusProtocolBase& protocol);

template <std::list<SBusRequest> SBusProtocolBase::*Member>
struct PendingTableAccess {
    friend std::list<SBusRequest>& pendingOf(SBusProtocolBase& protocol) { return protocol.*Member; }
};
template struct PendingTableAccess<&SBusProtocolBase::pending>;

namespace {

using PendingTableTest = EngineTest;

} // namespace

TEST_F(PendingTableTest, PollsAreSentFirstInFirstOut) {
    protocol->queueRequest(request("first"));
    protocol->queueRequest(request("second"));
    protocol->queueRequest(request("third"));
    EXPECT_EQ(pendingInOrder(), (QStringList{"first", "second", "third"}));
}

TEST_F(PendingTableTest, CommandsAreSentLastInFirstOut) {
    protocol->submitRequest(request("first"));
    protocol->submitRequest(request("second"));
    protocol->submitRequest(request("third"));
    EXPECT_EQ(pendingInOrder(), (QStringList{"third", "second", "first"}));
}

TEST_F(PendingTableTest, ACommandIsSentBeforeThePollsThatWait) {
    protocol->queueRequest(request("poll"));
    protocol->submitRequest(request("command"));
    protocol->queueRequest(request("later poll"));
    EXPECT_EQ(pendingInOrder(), (QStringList{"command", "poll", "later poll"}));
}

TEST_F(PendingTableTest, ACommandEqualToTwoPendingPollsRemovesBothAndTakesTheFront) {
    // By its own operations the table never comes to hold two equal polls: the second is put in by hand.
    protocol->queueRequest(request("output", {write(1)}));
    protocol->queueRequest(request("between"));
    pendingOf(*protocol).push_back(request("output", {write(1)}));
    protocol->submitRequest(request("output", {write(2)}));
    EXPECT_EQ(pendingInOrder(), (QStringList{"output", "between"}));
    EXPECT_TRUE(protocol->steps.contains("build w14@2 station 5"));
    EXPECT_FALSE(protocol->steps.contains("build w14@1 station 5"));
}

TEST_F(PendingTableTest, ANewCommandDisplacesAnEqualCommandAndTakesTheFront) {
    protocol->submitRequest(request("output", {write(1)}));
    protocol->submitRequest(request("other"));
    protocol->submitRequest(request("output", {write(2)}));
    EXPECT_EQ(pendingInOrder(), (QStringList{"output", "other"}));
    EXPECT_FALSE(protocol->steps.contains("build w14@1 station 5"));
}

TEST_F(PendingTableTest, APollEqualToAPendingCommandIsDropped) {
    protocol->submitRequest(request("output", {write(1)}));
    protocol->queueRequest(request("output", {write(2)}));
    EXPECT_EQ(pendingInOrder(), QStringList{"output"});
    EXPECT_TRUE(protocol->steps.contains("build w14@1 station 5"));
}

TEST_F(PendingTableTest, APollEqualToAPendingPollIsDroppedAndTheOlderKeepsItsPlace) {
    protocol->queueRequest(request("poll", {write(1)}));
    protocol->queueRequest(request("other"));
    protocol->queueRequest(request("poll", {write(2)}));
    EXPECT_EQ(pendingInOrder(), (QStringList{"poll", "other"}));
    EXPECT_FALSE(protocol->steps.contains("build w14@2 station 5"));
}

TEST_F(PendingTableTest, PollsOfDifferentLengthAreBothKept) {
    protocol->queueRequest(request("poll", {write()}));
    protocol->queueRequest(request("poll", {write(), write()}));
    EXPECT_EQ(pendingInOrder(), (QStringList{"poll", "poll", "poll"}));
}

TEST_F(PendingTableTest, ADroppedPollReportsNothingAndLeavesItsReplyAlone) {
    SBusRequest poll = request("poll");
    protocol->queueRequest(poll);
    poll.reply = takenReply();
    protocol->queueRequest(poll);
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(poll.reply->wait(0), std::nullopt);
}

TEST_F(PendingTableTest, ATakenRequestIsPendingNoLonger) {
    protocol->queueRequest(request("poll"));
    protocol->processNextRequest();
    EXPECT_FALSE(protocol->containsRequest(request("poll")));
    protocol->queueRequest(request("poll"));
    EXPECT_TRUE(protocol->containsRequest(request("poll")));
}

TEST_F(PendingTableTest, ContainsLooksForAnEqualRequest) {
    EXPECT_FALSE(protocol->containsRequest(request("poll")));
    protocol->queueRequest(request("poll", {write(1)}));
    EXPECT_TRUE(protocol->containsRequest(request("poll", {write(2)})));
    EXPECT_FALSE(protocol->containsRequest(request("poll", {})));
    EXPECT_FALSE(protocol->containsRequest(request("other")));
}

TEST_F(PendingTableTest, RemoveTakesEveryEqualRequestAndCountsThem) {
    protocol->queueRequest(request("poll"));
    protocol->queueRequest(request("other"));
    pendingOf(*protocol).push_back(request("poll"));
    EXPECT_EQ(protocol->removeRequest(request("poll")), 2);
    EXPECT_EQ(protocol->removeRequest(request("poll")), 0);
    EXPECT_EQ(pendingInOrder(), QStringList{"other"});
}

TEST_F(PendingTableTest, ThePendingRequestIsACopy) {
    SBusRequest poll = request("poll", {write(1)});
    protocol->queueRequest(poll);
    poll.name = "renamed";
    poll.items[0].address = 2;
    EXPECT_EQ(pendingInOrder(), QStringList{"poll"});
    EXPECT_TRUE(protocol->steps.contains("build w14@1 station 5"));
}

TEST_F(PendingTableTest, IsOfflineUntilALinkIsSet) {
    ScriptedProtocol fresh(&channel);
    fresh.queueRequest(request("poll"));
    EXPECT_FALSE(fresh.containsRequest(request("poll")));
}

TEST_F(PendingTableTest, APollOfferedWhileOfflineLeavesNoTrace) {
    protocol->setLink(nullptr);
    SBusRequest poll = request("poll");
    poll.reply = takenReply();
    protocol->queueRequest(poll);
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(core.channelStatusCount(), 0);
    EXPECT_FALSE(protocol->containsRequest(poll));
    EXPECT_EQ(poll.reply->wait(0), std::nullopt);
}

TEST_F(PendingTableTest, ACommandOfferedWhileOfflineFailsAtOnceAsAChannelError) {
    protocol->setLink(nullptr);
    SBusRequest command = request("command");
    command.reply = takenReply();
    protocol->submitRequest(command);
    EXPECT_EQ(command.reply->wait(0), Halvex::DriverErrorResult::ChannelError);
    EXPECT_EQ(logTexts(), QStringList{"Request result : Chennel Error"});
    EXPECT_EQ(rtu->GetRtuStatus().errors, 1u);
    EXPECT_FALSE(protocol->containsRequest(command));
}

TEST_F(PendingTableTest, TheReasonOfAnOfflineCommandIsWrittenNowhere) {
    protocol->setLink(nullptr);
    protocol->submitRequest(request("command"));
    for (const LogLine& line : log.lines())
        EXPECT_FALSE(line.text.contains("Offline")) << line.text;
    EXPECT_EQ(log.lines().size(), 1);
}

TEST_F(PendingTableTest, GoesOnWhenTheLinkIsBack) {
    protocol->setLink(nullptr);
    protocol->setLink(link);
    protocol->queueRequest(request("poll"));
    EXPECT_EQ(pendingInOrder(), QStringList{"poll"});
}

TEST_F(PendingTableTest, AnOfflineCommandIsReportedWithTheTableReleased) {
    protocol->setLink(nullptr);
    int seen = 0;
    const auto watcher = CLogger::GetInstance()->watchLines([&](const LogLine&) {
        ++seen;
        protocol->queueRequest(request("poll"));
    });
    expectNoDeadlock([&] { protocol->submitRequest(request("command")); });
    EXPECT_EQ(seen, 1);
}

TEST_F(PendingTableTest, TheTableIsFreeWhileARequestIsExchanged) {
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

TEST_F(PendingTableTest, TheTableIsFreeWhileAResultIsReported) {
    const auto watcher = CLogger::GetInstance()->watchLines([&](const LogLine&) {
        if (protocol->exchanged.size() == 1)
            protocol->queueRequest(request("next"));
    });
    protocol->queueRequest(request("running"));
    expectNoDeadlock([this] { runAll(); });
    EXPECT_EQ(protocol->exchanged, (QStringList{"running", "next"}));
}

TEST_F(PendingTableTest, ARequestBeingExchangedIsNotPending) {
    protocol->duringExchange = [this] { EXPECT_FALSE(protocol->containsRequest(request("running"))); };
    protocol->queueRequest(request("running"));
    runAll();
    EXPECT_EQ(protocol->exchanged.size(), 1);
}

TEST_F(PendingTableTest, PendingRequestsEndUnreportedWithTheEngine) {
    SBusRequest command = request("command");
    command.reply = takenReply();
    protocol->submitRequest(command);
    protocol->queueRequest(request("poll"));
    delete protocol;
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(command.reply->wait(0), std::nullopt);
}

TEST_F(PendingTableTest, TheEngineIsTheChannelsChild) {
    EXPECT_EQ(protocol->parent(), &channel);
}

TEST_F(PendingTableTest, ProducersOnManyThreadsLoseNothing) {
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
