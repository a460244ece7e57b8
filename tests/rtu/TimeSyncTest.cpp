#include "CommandBench.h"

#include "ReferenceTelegram.h"

#include <QDateTime>

namespace {

const QString label = QStringLiteral("Time Sync Command");

class TimeSyncTest : public CommandBench {
protected:
    Command setting() {
        return [this](CReply* reply) { return rtu->timeSync(reply); };
    }

    // Queues a poll, then runs the command; what goes over the line, in order.
    QStringList orderBehindAPoll(CReply* reply) {
        addAnalog(1, "R1");
        EXPECT_EQ(request(Halvex::PollKind::Analog), accepted);
        EXPECT_EQ(rtu->timeSync(reply), accepted);
        return namesSent();
    }
};

// Whether the clock bytes are those of a second between the two times, both included.
bool liesBetween(const QByteArray& data, const QDateTime& before, const QDateTime& after) {
    for (QDateTime second = before; second < after; second = second.addSecs(1))
        if (data == referenceClockBytes(second))
            return true;
    return data == referenceClockBytes(after);
}

// The zone of the computer's clock while it lives.
class LocalZone {
public:
    explicit LocalZone(const char* zone) { qputenv("TZ", zone); }
    LocalZone(const LocalZone&) = delete;
    LocalZone& operator=(const LocalZone&) = delete;
    ~LocalZone() {
        if (before.isNull())
            qunsetenv("TZ");
        else
            qputenv("TZ", before);
        QDateTime::currentDateTime().date(); // looks at the zone again
    }

private:
    const QByteArray before = qgetenv("TZ");
};

} // namespace

// --- The request

TEST_F(TimeSyncTest, SendsOneClockWriteLabelledTimeSyncCommand) {
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    const SentRequest request = sendOnlyRequest();
    EXPECT_EQ(request.name, label);
    EXPECT_EQ(request.rtu, rtu);
    EXPECT_EQ(request.reply, nullptr);
    ASSERT_EQ(request.items.size(), 1);
    EXPECT_EQ(request.items[0].command, 12u);
    EXPECT_EQ(request.items[0].count, 0u);
    EXPECT_EQ(request.items[0].address, 0u);
    EXPECT_EQ(request.items[0].data.size(), 8);
}

TEST_F(TimeSyncTest, SendsTheSameWithAReply) {
    auto* reply = new CReply(&channel);
    EXPECT_EQ(rtu->timeSync(reply), accepted);
    const SentRequest request = sendOnlyRequest();
    EXPECT_EQ(reply->wait(10'000), Halvex::DriverErrorResult::Success);
    EXPECT_EQ(request.name, label);
    EXPECT_EQ(request.rtu, rtu);
    EXPECT_EQ(request.reply, reply);
    ASSERT_EQ(request.items.size(), 1);
    EXPECT_EQ(request.items[0], writeItem(12, 0, 0, request.items[0].data));
    EXPECT_EQ(request.items[0].data.size(), 8);
}

TEST_F(TimeSyncTest, SendsTheTimeOfTheCommand) {
    for (const bool withReply : {false, true}) {
        auto* reply = withReply ? new CReply(&channel) : nullptr;
        const QDateTime before = QDateTime::currentDateTime();
        EXPECT_EQ(rtu->timeSync(reply), accepted);
        const QDateTime after = QDateTime::currentDateTime();
        const SentRequest request = sendOnlyRequest();
        if (reply != nullptr)
            reply->wait(10'000);
        ASSERT_EQ(request.items.size(), 1);
        EXPECT_TRUE(liesBetween(request.items[0].data, before, after))
            << toHex(request.items[0].data).constData();
    }
}

// Two readings would be one of the old day and one of the new.
TEST_F(TimeSyncTest, ReadsTheClockOnce) {
    const QDateTime lastOfYear(QDate(2023, 12, 31), QTime(23, 59, 59, 999));
    for (const bool withReply : {false, true}) {
        auto* reply = withReply ? new CReply(&channel) : nullptr;
        BenchClock::set(lastOfYear.toMSecsSinceEpoch(), 1'000);
        EXPECT_EQ(rtu->timeSync(reply), accepted);
        EXPECT_EQ(BenchClock::readings(), 1);
        const SentRequest request = sendOnlyRequest();
        if (reply != nullptr)
            reply->wait(10'000);
        ASSERT_EQ(request.items.size(), 1);
        EXPECT_EQ(toHex(request.items[0].data), "52 07 23 12 31 23 59 59");
    }
}

TEST_F(TimeSyncTest, SendsTheComputersTimeUnlessTheRtuIsGivenAnotherClock) {
    RemoteTerminalUnit info;
    info.id = 99;
    SBusRtu plain(&channel, &core, info);
    plain.attachProtocol(protocol, &releases);
    const QDateTime before = QDateTime::currentDateTime();
    EXPECT_EQ(plain.timeSync(nullptr), accepted);
    const QDateTime after = QDateTime::currentDateTime();
    const SentRequest request = sendOnlyRequest();
    ASSERT_EQ(request.items.size(), 1);
    EXPECT_TRUE(liesBetween(request.items[0].data, before, after));
}

TEST_F(TimeSyncTest, SendsTheTimeOfTheLocalZone) {
    for (const int minutesEast : {5 * 60 + 45, -(3 * 60 + 30), 14 * 60, 0}) {
        // The sign of a zone's text counts westwards.
        const LocalZone zone(QStringLiteral("XXX%1%2:%3")
                                 .arg(minutesEast > 0 ? "-" : "+")
                                 .arg(qAbs(minutesEast) / 60)
                                 .arg(qAbs(minutesEast) % 60, 2, 10, QLatin1Char('0'))
                                 .toLatin1()
                                 .constData());
        const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(qint64{minutesEast} * 60);
        EXPECT_EQ(rtu->timeSync(nullptr), accepted);
        const QDateTime after = QDateTime::currentDateTimeUtc().addSecs(qint64{minutesEast} * 60);
        const SentRequest request = sendOnlyRequest();
        ASSERT_EQ(request.items.size(), 1);
        EXPECT_TRUE(liesBetween(request.items[0].data, before, after))
            << minutesEast << ' ' << toHex(request.items[0].data).constData();
    }
}

TEST_F(TimeSyncTest, NeedsNoPoints) {
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    EXPECT_EQ(sendPending().size(), 1);
}

TEST_F(TimeSyncTest, LogsNothingItself) {
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    auto* reply = new CReply(&channel);
    EXPECT_EQ(rtu->timeSync(reply), accepted);
    EXPECT_TRUE(log.lines().isEmpty());
    sendPending();
    reply->release();
}

TEST_F(TimeSyncTest, TranslatesItsLabelAsATextOfTheBase) {
    const MarkingTranslator translator("CRtu");
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    EXPECT_EQ(sendOnlyRequest().name, QStringLiteral("<Time Sync Command>"));
}

TEST_F(TimeSyncTest, DoesNotTranslateItsLabelAsATextOfItsOwn) {
    const MarkingTranslator translator("SBusRtu");
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    EXPECT_EQ(sendOnlyRequest().name, label);
}

TEST_F(TimeSyncTest, IsAskedForByTheHostAlone) {
    EXPECT_TRUE(rtu->InitRtu());
    EXPECT_TRUE(sendAfter(0).isEmpty());
    EXPECT_TRUE(sendAfter(24 * 3'600'000 - 1).isEmpty());
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    EXPECT_EQ(sendPending().size(), 1);
    EXPECT_TRUE(sendAfter(3'600'000).isEmpty());
}

// --- Refusal

TEST_F(TimeSyncTest, NeedsAConnectedChannel) {
    expectNeedsAConnectedChannel(setting());
}

TEST_F(TimeSyncTest, GoesByTheChannelsConnectionAndNotTheRtus) {
    rtu->SetConnect(false, false);
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    EXPECT_EQ(sendPending().size(), 1);
}

// --- With a reply: the command path

TEST_F(TimeSyncTest, TakesItsReplyOverOnce) {
    expectTakesItsReplyOverOnce(setting());
}

TEST_F(TimeSyncTest, CompletesItsReplyWithTheOutcome) {
    expectCompletesItsReplyWithTheOutcome(setting());
}

TEST_F(TimeSyncTest, RunsWithoutAReply) {
    expectRunsWithoutAReply(setting());
}

TEST_F(TimeSyncTest, WithAReplyGoesAheadOfWaitingPolls) {
    auto* reply = new CReply(&channel);
    EXPECT_EQ(orderBehindAPoll(reply), (QStringList{label, "analog poll"}));
    EXPECT_EQ(reply->wait(10'000), Halvex::DriverErrorResult::Success);
}

TEST_F(TimeSyncTest, WithAReplyIsAcceptedAndReportedWhenThereIsNoLink) {
    protocol->setLink(nullptr);
    auto* reply = new CReply(&channel);
    EXPECT_EQ(rtu->timeSync(reply), accepted);
    EXPECT_EQ(reply->wait(10'000), Halvex::DriverErrorResult::ChannelError);
    EXPECT_EQ(log.texts(LogLine::Route::All), QStringList{"Request result : Chennel Error"});
    protocol->setLink(&link);
    EXPECT_TRUE(sendPending().isEmpty());
}

TEST_F(TimeSyncTest, WithAReplyDisplacesAWaitingOneWithout) {
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    auto* reply = new CReply(&channel);
    EXPECT_EQ(orderBehindAPoll(reply), (QStringList{label, "analog poll"}));
    EXPECT_EQ(reply->wait(10'000), Halvex::DriverErrorResult::Success);
}

TEST_F(TimeSyncTest, WithAReplyDisplacesAWaitingOneWhoseReplyIsNeverCompleted) {
    auto* first = new CReply(&channel);
    auto* second = new CReply(&channel);
    EXPECT_EQ(rtu->timeSync(first), accepted);
    EXPECT_EQ(rtu->timeSync(second), accepted);
    EXPECT_EQ(sendOnlyRequest().reply, second);
    EXPECT_EQ(second->wait(10'000), Halvex::DriverErrorResult::Success);
    EXPECT_EQ(first->wait(0), std::nullopt);
}

// --- Without a reply: the poll path

TEST_F(TimeSyncTest, WithoutAReplyQueuesBehindWaitingPolls) {
    EXPECT_EQ(orderBehindAPoll(nullptr), (QStringList{"analog poll", label}));
}

TEST_F(TimeSyncTest, WithoutAReplyIsDroppedWhileOneWaits) {
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    EXPECT_EQ(sendPending().size(), 1);
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    EXPECT_EQ(sendPending().size(), 1) << "no longer waiting";
}

TEST_F(TimeSyncTest, WithoutAReplyIsDroppedWhileOneWaitsUnderATranslatedLabelToo) {
    const MarkingTranslator translator("CRtu");
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    EXPECT_EQ(namesSent(), QStringList{"<Time Sync Command>"});
}

TEST_F(TimeSyncTest, WithoutAReplyIsDroppedWhileOneWithAReplyWaits) {
    auto* reply = new CReply(&channel);
    EXPECT_EQ(rtu->timeSync(reply), accepted);
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    EXPECT_EQ(sendOnlyRequest().reply, reply);
    EXPECT_EQ(reply->wait(10'000), Halvex::DriverErrorResult::Success);
}

TEST_F(TimeSyncTest, WithoutAReplyIsDroppedWithoutAWordWhenThereIsNoLink) {
    protocol->setLink(nullptr);
    EXPECT_EQ(rtu->timeSync(nullptr), accepted);
    protocol->setLink(&link);
    EXPECT_TRUE(sendPending().isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(endedRequests(), 0u);
}
