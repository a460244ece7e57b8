#include "EngineTest.h"

namespace {

class TransactionCycleTest : public EngineTest {
protected:
    void run(const SBusRequest& made) {
        SBusRequest copy = made;
        protocol->executeRequest(copy);
    }

    // Points whose value the RTU's publishers put: the register's number is the point's.
    void addRegisterPoint(unsigned number) {
        AnalogPoint point;
        point.number = number;
        rtu->GetPointList()->AddAnalogPoint(point);
    }

    // Leaves a value of point 10 with the RTU, for the next publication.
    void stageAValue() {
        addRegisterPoint(10);
        rtu->PutAnalogPoint(false, 10, 7.0, 0, CMidTime(QDateTime::currentDateTime(), 0));
    }

    // The publications that hold a value just read.
    QList<RecordingCore::Publication> goodPublications() const {
        QList<RecordingCore::Publication> result;
        for (const RecordingCore::Publication& publication : core.publications())
            for (const PointUpdate& update : publication.updates)
                if (update.quality == PointQuality::Good) {
                    result << publication;
                    break;
                }
        return result;
    }
};

const QByteArray seven = hex("00 00 00 07 AA BB");

} // namespace

TEST_F(TransactionCycleTest, AnEmptyTableCausesNothing) {
    protocol->processNextRequest();
    EXPECT_TRUE(protocol->steps.isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(TransactionCycleTest, OneTurnRunsOneRequest) {
    protocol->queueRequest(request("first"));
    protocol->queueRequest(request("second"));
    protocol->processNextRequest();
    EXPECT_EQ(protocol->exchanged, QStringList{"first"});
    protocol->processNextRequest();
    EXPECT_EQ(protocol->exchanged, (QStringList{"first", "second"}));
}

TEST_F(TransactionCycleTest, ItemsAreExchangedInOrder) {
    run(request("poll", {{6, 1, 10, {}}, {14, 0, 20, hex("01")}, {2, 8, 30, {}}}));
    EXPECT_EQ(protocol->steps,
              (QStringList{"build r6@10 station 5", "exchange r6@10 read 10",
                           "check r6@10 00000000000000000000 poll 6", "build w14@20 station 5",
                           "exchange w14@20 write 0", "build r2@30 station 5", "exchange r2@30 read 4",
                           "check r2@30 00000000 poll 2"}));
}

TEST_F(TransactionCycleTest, AWordReadHasFourZeroBytesAnElementAndTwoForTheChecksum) {
    for (const quint32 command : {0u, 6u, 7u})
        for (const quint32 count : {0u, 30u, 127u}) {
            protocol->responsesIn.clear();
            run(request("poll", {{command, count, 0, {}}}));
            const int size = (static_cast<int>(count) + 1) * 4 + 2;
            EXPECT_EQ(protocol->responsesIn, QList<QByteArray>{QByteArray(size, '\0')})
                << command << ' ' << count;
        }
}

TEST_F(TransactionCycleTest, ABitReadHasAZeroByteForEightElementsAndTwoForTheChecksum) {
    const std::pair<quint32, int> sizes[] = {{0, 3}, {7, 3}, {8, 4}, {126, 18}, {127, 18}};
    for (const quint32 command : {2u, 3u, 5u})
        for (const auto& [count, size] : sizes) {
            protocol->responsesIn.clear();
            run(request("poll", {{command, count, 0, {}}}));
            EXPECT_EQ(protocol->responsesIn, QList<QByteArray>{QByteArray(size, '\0')})
                << command << ' ' << count;
        }
}

TEST_F(TransactionCycleTest, EveryWriteCodeIsExchangedAsAWriteWithAnEmptyResponse) {
    for (const quint32 command : {10u, 11u, 12u, 13u, 14u, 15u}) {
        protocol->steps.clear();
        run(request("command", {{command, 3, 1, hex("01")}}));
        EXPECT_EQ(protocol->steps, (QStringList{QStringLiteral("build w%1@1 station 5").arg(command),
                                                QStringLiteral("exchange w%1@1 write 0").arg(command)}));
    }
}

TEST_F(TransactionCycleTest, CodesWithoutATelegramAreSkipped) {
    for (const quint32 command : {1u, 4u, 8u, 9u, 16u, 255u, 0xFFFFFFFFu})
        run(request("poll", {{command, 0, 0, {}}}));
    EXPECT_TRUE(protocol->steps.isEmpty());
}

TEST_F(TransactionCycleTest, ARequestOfUnknownCodesAloneReportsSuccessAndPublishesNothingNew) {
    run(request("poll", {{1, 0, 0, {}}, {9, 0, 0, {}}}));
    EXPECT_EQ(logTexts(), QStringList{"Request result : Success"});
    EXPECT_EQ(rtu->GetRtuStatus().answers, 1u);
    EXPECT_TRUE(rtu->handedOver.isEmpty());
    EXPECT_TRUE(goodPublications().isEmpty());
}

TEST_F(TransactionCycleTest, AnUnknownCodeAmongOthersOnlyDropsOut) {
    run(request("poll", {{6, 0, 10, {}}, {1, 0, 0, {}}, {6, 0, 20, {}}}));
    EXPECT_EQ(protocol->exchanged.size(), 2);
    EXPECT_EQ(logTexts(), QStringList{"Request result : Success"});
}

TEST_F(TransactionCycleTest, ARequestWithoutItemsCausesNoTrafficAndReportsSuccess) {
    protocol->queueRequest(request("nothing", {}));
    protocol->processNextRequest();
    EXPECT_TRUE(protocol->steps.isEmpty());
    EXPECT_EQ(logTexts(), QStringList{"Request result : Success"});
}

TEST_F(TransactionCycleTest, AnswersAreCheckedForReadsAndNotForWrites) {
    run(request("command", {write()}));
    EXPECT_TRUE(protocol->steps.filter("check").isEmpty());
    protocol->answer(seven);
    run(request("poll", {{6, 0, 10, {}}}));
    EXPECT_EQ(protocol->steps.filter("check"), QStringList{"check r6@10 00000007aabb poll 6"});
}

TEST_F(TransactionCycleTest, AnAnswerThatDoesNotCountEndsTheRequestWithItsCode) {
    protocol->checkResult = SBusBadData2;
    protocol->answer(seven);
    run(request("poll", {{6, 0, 10, {}}, {6, 0, 20, {}}}));
    EXPECT_EQ(protocol->exchanged.size(), 1);
    EXPECT_TRUE(rtu->handedOver.isEmpty());
    EXPECT_EQ(logTexts(), QStringList{"Request result :  Bad Data"});
}

TEST_F(TransactionCycleTest, AFailedReadIsNeitherCheckedNorHandedOver) {
    protocol->failWith(SBusBadData);
    run(request("poll", {{6, 0, 10, {}}}));
    EXPECT_TRUE(protocol->steps.filter("check").isEmpty());
    EXPECT_TRUE(rtu->handedOver.isEmpty());
}

TEST_F(TransactionCycleTest, AFailureEndsTheRequestAtOnceAndIsReportedOnce) {
    protocol->succeed();
    protocol->failWith(SBusBadData);
    run(request("command", {write(1), write(2), write(3)}));
    EXPECT_EQ(protocol->steps.filter("exchange"),
              (QStringList{"exchange w14@1 write 0", "exchange w14@2 write 0"}));
    EXPECT_EQ(logTexts(), QStringList{"Request result : Bad Data"});
}

TEST_F(TransactionCycleTest, AFailedRequestIsNotSentAgain) {
    protocol->failWith(SBusTimeOut);
    protocol->queueRequest(request("poll"));
    runAll();
    EXPECT_EQ(protocol->exchanged, QStringList{"poll"});
}

TEST_F(TransactionCycleTest, ValuesOfBothItemsArePublishedTogetherOnceAfterTheLastItem) {
    addRegisterPoint(10);
    addRegisterPoint(20);
    protocol->answer(seven);
    protocol->answer(hex("00 00 00 08 AA BB"));
    protocol->duringExchange = [this] { EXPECT_TRUE(goodPublications().isEmpty()); };
    run(request("poll", {{6, 0, 10, {}}, {6, 0, 20, {}}}));

    const QList<RecordingCore::Publication> published = goodPublications();
    ASSERT_EQ(published.size(), 1);
    EXPECT_EQ(published[0].updates.size(), 2);
    EXPECT_EQ(core.point(channelId, rtuId, 10)->value, 7);
    EXPECT_EQ(core.point(channelId, rtuId, 20)->value, 8);
}

TEST_F(TransactionCycleTest, TheResultIsReportedBeforeTheValuesArePublished) {
    addRegisterPoint(10);
    protocol->answer(seven);
    int publishedAtTheResult = -1;
    const auto watcher = CLogger::GetInstance()->watchLines(
        [&](const LogLine&) { publishedAtTheResult = goodPublications().size(); });
    run(request("poll", {{6, 0, 10, {}}}));
    EXPECT_EQ(publishedAtTheResult, 0);
    EXPECT_EQ(goodPublications().size(), 1);
}

TEST_F(TransactionCycleTest, WhenTheSecondExchangeTimesOutTheFirstOnesValuesAreHandedOverButNotPublished) {
    addRegisterPoint(10);
    protocol->answer(seven);
    protocol->failWith(SBusTimeOut);
    run(request("poll", {{6, 0, 10, {}}, {6, 0, 20, {}}}));
    EXPECT_EQ(rtu->handedOver, QStringList{"analog R10: 7"});
    EXPECT_TRUE(goodPublications().isEmpty());
    EXPECT_EQ(logTexts(), QStringList{"Request result : Timeout"});
    EXPECT_EQ(rtu->GetRtuStatus().timeOuts, 1u);
    EXPECT_EQ(rtu->GetRtuStatus().answers, 0u);
}

TEST_F(TransactionCycleTest, TheReplyIsCompletedAfterTheLastItem) {
    SBusRequest command = request("command", {write(1), write(2)});
    command.reply = takenReply();
    protocol->duringExchange = [&] { EXPECT_FALSE(command.reply->replyed()); };
    protocol->submitRequest(command);
    protocol->processNextRequest();
    EXPECT_EQ(protocol->exchanged.size(), 2);
    EXPECT_EQ(command.reply->wait(0), Halvex::DriverErrorResult::Success);
}

TEST_F(TransactionCycleTest, TheReplyOfAFailedCommandHoldsItsResult) {
    SBusRequest command = request("command", {write(1), write(2)});
    command.reply = takenReply();
    protocol->failWith(SBusBadData);
    protocol->submitRequest(command);
    protocol->processNextRequest();
    EXPECT_EQ(command.reply->wait(0), Halvex::DriverErrorResult::BadData);
}

TEST_F(TransactionCycleTest, ACommandWhoseLinkIsGoneIsAnsweredAsAChannelError) {
    SBusRequest command = request("command");
    command.reply = takenReply();
    protocol->submitRequest(command);
    protocol->setLink(nullptr);
    protocol->processNextRequest();
    EXPECT_TRUE(protocol->steps.isEmpty());
    EXPECT_EQ(command.reply->wait(0), Halvex::DriverErrorResult::ChannelError);
    EXPECT_EQ(logTexts(), QStringList{"Request result : Chennel Error"});
}

TEST_F(TransactionCycleTest, APollWhoseLinkIsGoneEndsInSilence) {
    protocol->queueRequest(request("poll"));
    protocol->setLink(nullptr);
    protocol->processNextRequest();
    EXPECT_TRUE(protocol->steps.isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(core.channelStatusCount(), 0);
    EXPECT_TRUE(core.publications().isEmpty());
    protocol->setLink(link);
    EXPECT_EQ(pendingInOrder(), QStringList{});
}

TEST_F(TransactionCycleTest, TheStationIsTheDecimalNumberInTheRtusRecord) {
    const std::pair<const char*, const char*> texts[] = {{"0", "0"},     {"5", "5"},     {"012", "12"},
                                                         {"254", "254"}, {"300", "300"}, {"", "0"},
                                                         {"0x10", "0"},  {"five", "0"}};
    int id = 100;
    for (const auto& [text, station] : texts) {
        protocol->steps.clear();
        SBusRequest made = request("poll", {{6, 0, 10, {}}, write(20)});
        made.rtu = channel.add<PublishingRtu>(stationRecord(++id, text));
        run(made);
        EXPECT_EQ(protocol->steps.filter("build"), (QStringList{QString("build r6@10 station ") + station,
                                                                QString("build w14@20 station ") + station}))
            << text;
    }
}

TEST_F(TransactionCycleTest, TheReservedHookIsCalledByNobody) {
    run(request("poll", {{6, 0, 10, {}}, write()}));
    protocol->failWith(SBusTimeOut);
    run(request("command"));
    EXPECT_FALSE(protocol->steps.contains("reserved"));
}

TEST_F(TransactionCycleTest, ARequestWithoutAnRtuGoesStraightToItsReport) {
    SBusRequest orphan = request("command");
    orphan.rtu = nullptr;
    protocol->queueRequest(orphan);
    protocol->processNextRequest();
    EXPECT_TRUE(protocol->steps.isEmpty());
    EXPECT_EQ(log.texts(LogLine::Route::File),
              QStringList{"Request callback failed (RTU handle is not found)"});
}

TEST_F(TransactionCycleTest, ARequestWithoutItemsPublishesWhatTheRtuHolds) {
    stageAValue();
    run(request("nothing", {}));
    EXPECT_EQ(goodPublications().size(), 1);
}

TEST_F(TransactionCycleTest, ARequestWithoutALinkPublishesNothing) {
    stageAValue();
    protocol->setLink(nullptr);
    run(request("poll", {{6, 0, 10, {}}}));
    SBusRequest command = request("command");
    command.reply = takenReply();
    run(command);
    EXPECT_EQ(command.reply->wait(0), Halvex::DriverErrorResult::ChannelError);
    EXPECT_TRUE(goodPublications().isEmpty());
}

TEST_F(TransactionCycleTest, AFailedRequestPublishesNothing) {
    for (const unsigned code : {1u, 2u, 3u, 4u, 99u}) { // 99 leaves the RTU's values alone
        core.clear();
        stageAValue();
        protocol->failWith(code);
        run(request("poll", {{6, 0, 10, {}}}));
        stageAValue();
        protocol->failWith(code);
        run(request("command"));
        EXPECT_TRUE(goodPublications().isEmpty()) << code;
    }
}

TEST_F(TransactionCycleTest, ARequestWhoseRtuIsNullPublishesForNoOther) {
    stageAValue();
    SBusRequest orphan = request("command");
    orphan.rtu = nullptr;
    run(orphan);
    EXPECT_TRUE(goodPublications().isEmpty());
}

TEST_F(TransactionCycleTest, EveryUnknownCodeEndsTheRequestWithoutALogLine) {
    protocol->failWith(99);
    run(request("command", {write(1), write(2)}));
    EXPECT_EQ(protocol->exchanged.size(), 1);
    EXPECT_TRUE(logTexts().isEmpty());
    EXPECT_EQ(core.channelStatusCount(), 1);
}

// A good answer that covers fewer elements than were asked for.

TEST_F(TransactionCycleTest, AShortAnswerHandsOverWhatItCoversAndEndsTheRequestAsBadDataOfTheSecondKind) {
    addRegisterPoint(10);
    addRegisterPoint(11);
    addRegisterPoint(12);
    SBusRequest command = request("poll", {{6, 2, 10, {}}, {6, 0, 20, {}}});
    command.reply = takenReply();
    protocol->answer(hex("00 00 00 07 00 00 00 08 FF FF"));
    run(command);
    EXPECT_EQ(rtu->handedOver, QStringList{"analog R10: 7 8"});
    EXPECT_TRUE(goodPublications().isEmpty());
    EXPECT_EQ(protocol->exchanged.size(), 1) << "the second telegram is not sent";
    EXPECT_EQ(command.reply->wait(0), Halvex::DriverErrorResult::BadData);
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_EQ(log.lines()[0].text, "Request result :  Bad Data");
    EXPECT_EQ(static_cast<int>(log.lines()[0].level), 8);
    const RtuStatus status = rtu->GetRtuStatus();
    EXPECT_EQ(status.answers, 0u);
    EXPECT_EQ(status.timeOuts, 0u);
    EXPECT_EQ(status.errors, 1u);
}

TEST_F(TransactionCycleTest, AnAnswerIsShortWhenOneByteOfItsPayloadIsMissing) {
    struct Row {
        SBusRequestItem item;
        int payload;
    };
    for (const Row& row : {Row{{6, 0, 10, {}}, 4}, Row{{6, 126, 10, {}}, 508}, Row{{2, 7, 10, {}}, 1},
                           Row{{2, 8, 10, {}}, 2}, Row{{2, 126, 10, {}}, 16}}) {
        log.clear();
        protocol->answer(QByteArray(row.payload + 2 - 1, '\0'));
        run(request("poll", {row.item}));
        EXPECT_EQ(logTexts(), QStringList{"Request result :  Bad Data"}) << row.payload;
        log.clear();
        protocol->answer(QByteArray(row.payload + 2, '\0'));
        run(request("poll", {row.item}));
        EXPECT_EQ(logTexts(), QStringList{"Request result : Success"}) << row.payload;
    }
}

TEST_F(TransactionCycleTest, AnAnswerOfMoreThanWasAskedForIsGoodAndTheRestIsNotHandedOver) {
    protocol->answer(hex("00 00 00 07 00 00 00 08 FF FF"));
    run(request("poll", {{6, 0, 10, {}}}));
    EXPECT_EQ(rtu->handedOver, QStringList{"analog R10: 7"});
    EXPECT_EQ(logTexts(), QStringList{"Request result : Success"});
}
