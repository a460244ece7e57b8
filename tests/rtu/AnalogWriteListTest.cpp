#include "AnalogWriteListBench.h"

#include <limits>

using Halvex::PointDataType;

namespace {

using AnalogWriteListTest = AnalogWriteListBench;

const QString label = QStringLiteral("Analog Write List");

} // namespace

// --- The request

TEST_F(AnalogWriteListTest, SendsOneRequestLabelledAnalogWriteList) {
    list("R", 100, 102);
    list("T", 7);
    EXPECT_EQ(write(), accepted);
    const SentRequest request = sendOnlyRequest();
    EXPECT_EQ(request.name, label);
    EXPECT_EQ(request.rtu, rtu);
    EXPECT_EQ(request.reply, nullptr);
    EXPECT_EQ(request.items.size(), 2);
}

TEST_F(AnalogWriteListTest, TranslatesItsLabelAsATextOfTheBase) {
    list("R", 1);
    const MarkingTranslator translator("CRtu");
    EXPECT_EQ(write(), accepted);
    EXPECT_EQ(sendOnlyRequest().name, QStringLiteral("<Analog Write List>"));
}

TEST_F(AnalogWriteListTest, DoesNotTranslateItsLabelAsATextOfItsOwn) {
    list("R", 1);
    const MarkingTranslator translator("SBusRtu");
    EXPECT_EQ(write(), accepted);
    EXPECT_EQ(sendOnlyRequest().name, label);
}

TEST_F(AnalogWriteListTest, LogsNothingItselfWhenItIsAccepted) {
    list("R", 1);
    EXPECT_EQ(write(), accepted);
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(AnalogWriteListTest, QueuesARequestWithoutTelegramsForAnEmptyList) {
    EXPECT_EQ(write(), accepted);
    SBusRequest expected;
    expected.rtu = rtu;
    expected.name = label;
    EXPECT_TRUE(protocol->containsRequest(expected));
    EXPECT_TRUE(sendPending().isEmpty());
    EXPECT_EQ(endedRequests(), 1u);
}

TEST_F(AnalogWriteListTest, CompletesTheReplyOfAnEmptyListWithSuccess) {
    expectTakesItsReplyOverOnce(writing());
}

TEST_F(AnalogWriteListTest, WritesPointsWhoseAddressesWereSplitForThePolls) {
    listPoint(1, "R200", "", 7);
    listPoint(2, "R201", "", 8);
    rtu->InitRtu();
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 200, 2, hex("00 00 00 07 00 00 00 08"))}));
}

TEST_F(AnalogWriteListTest, WritesOnlyThePointsOfTheList) {
    list("R", 10, 12);
    values.remove(2); // R11
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 10, 1, word(10)), writeItem(14, 12, 0, word(12))}));
}

TEST_F(AnalogWriteListTest, LeavesTheCallersListAlone) {
    list("R", 10, 12);
    const Values before = values;
    EXPECT_EQ(write(), accepted);
    EXPECT_EQ(values, before);
}

// --- Values

TEST_F(AnalogWriteListTest, CutsIntegersTowardsZeroAndWritesTheLowestNumberForWhatDoesNotFit) {
    for (const char* media : {"R", "C"}) {
        EXPECT_EQ(bytesFor(media, 12.7), "00 00 00 0C") << media;
        EXPECT_EQ(bytesFor(media, -12.7), "FF FF FF F4") << media;
        EXPECT_EQ(bytesFor(media, 2'147'483'647.0), "7F FF FF FF") << media;
        EXPECT_EQ(bytesFor(media, -2'147'483'648.0), "80 00 00 00") << media;
        EXPECT_EQ(bytesFor(media, 2'147'483'648.0), "80 00 00 00") << media;
        EXPECT_EQ(bytesFor(media, -1e300), "80 00 00 00") << media;
        EXPECT_EQ(bytesFor(media, std::numeric_limits<double>::quiet_NaN()), "80 00 00 00") << media;
    }
}

TEST_F(AnalogWriteListTest, WritesTheLowThirtyTwoBitsOfATimersValue) {
    EXPECT_EQ(bytesFor("T", -1.0), "FF FF FF FF");
    EXPECT_EQ(bytesFor("T", 12.7), "00 00 00 0C");
    EXPECT_EQ(bytesFor("T", 3e9), "B2 D0 5E 00");
    EXPECT_EQ(bytesFor("T", 4'294'967'297.0), "00 00 00 01");
}

TEST_F(AnalogWriteListTest, WritesAFloatingPointRegisterAsADoubleOfSinglePrecision) {
    const auto bytes = [this](double value) { return bytesFor("R", value, PointDataType::Float); };
    EXPECT_EQ(bytes(1.0), "3F F0 00 00 00 00 00 00");
    EXPECT_EQ(bytes(0.0), "00 00 00 00 00 00 00 00");
    EXPECT_EQ(bytes(-2.5), "C0 04 00 00 00 00 00 00");
    EXPECT_EQ(bytes(100.0), "40 59 00 00 00 00 00 00");
    EXPECT_EQ(bytes(3.14), "40 09 1E B8 60 00 00 00") << "rounded to single precision";
    EXPECT_EQ(bytes(0.1), "3F B9 99 99 A0 00 00 00") << "rounded to single precision";
    EXPECT_EQ(bytes(16'777'217.0), "41 70 00 00 00 00 00 00") << "a tie goes to the even neighbour";
    EXPECT_EQ(bytes(1e300), "7F F0 00 00 00 00 00 00");
    EXPECT_EQ(bytes(-1e300), "FF F0 00 00 00 00 00 00");
}

TEST_F(AnalogWriteListTest, TakesCountersAndTimersForIntegersWhateverTheirDataType) {
    EXPECT_EQ(bytesFor("C", 12.7, PointDataType::Float), "00 00 00 0C");
    EXPECT_EQ(bytesFor("T", -1.0, PointDataType::Float), "FF FF FF FF");
}

TEST_F(AnalogWriteListTest, CountsElementsWhateverTheirSizeInARunOfBothDataTypes) {
    listValue("R", 1, 7);
    listValue("R", 2, 1.0, PointDataType::Float);
    listValue("R", 3, 9);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 3, word(7) + hex("3F F0 00 00 00 00 00 00") + word(9))}));
}

// --- Refusals

TEST_F(AnalogWriteListTest, NeedsAConnectedChannel) {
    list("R", 1);
    expectNeedsAConnectedChannel(writing());
}

TEST_F(AnalogWriteListTest, LooksAtTheChannelBeforeAnythingElse) {
    expectNeedsAConnectedChannel(writing()); // an empty list
    values[999] = 1;
    expectNeedsAConnectedChannel(writing());
    values.clear();
    listPoint(1, "F", "1");
    expectNeedsAConnectedChannel(writing());
}

TEST_F(AnalogWriteListTest, GoesByTheChannelsConnectionAndNotTheRtus) {
    list("R", 1);
    rtu->SetConnect(false, false);
    EXPECT_EQ(write(), accepted);
    EXPECT_EQ(sendPending().size(), 1);
}

TEST_F(AnalogWriteListTest, RefusesAndLogsAnUnknownPointAndSendsNothingOfTheOthers) {
    list("R", 1, 3);
    values[999] = 1;
    expectRefused(writing(), pointNotFound, {"AO command failed (Point=999 is not found)"});
    values.remove(999);
    values[4'294'967'295u] = 1;
    expectRefused(writing(), pointNotFound, {"AO command failed (Point=4294967295 is not found)"});
}

TEST_F(AnalogWriteListTest, DoesNotTakeAStatusPointForAnAnalogPoint) {
    addStatus(500, "R1");
    values[500] = 1;
    expectRefused(writing(), pointNotFound, {"AO command failed (Point=500 is not found)"});
}

TEST_F(AnalogWriteListTest, RefusesAndLogsAnAddressThatIsNotOneOfTheThreeLetters) {
    for (const char* address :
         {"", "F", "O", "I", "P", "r", "t", "c", "R200", "RR", "TC", "R ", " R", "X12.3"})
        expectAddressRefused(address, "5");
}

TEST_F(AnalogWriteListTest, RefusesAndLogsAnEmptyNumber) {
    for (const char* address : {"R", "T", "C"})
        expectAddressRefused(address, "");
}

TEST_F(AnalogWriteListTest, SendsNothingOfTheOthersWhenOneAddressIsRefused) {
    list("R", 1, 3);
    listPoint(50, "F", "5");
    expectRefused(writing(), unsupportedAddress, {"AO command failed (Addr=F Unsupported Address Format)"});
}

TEST_F(AnalogWriteListTest, StopsAtTheFirstPointThatItRefusesInTheOrderOfThePointNumbers) {
    listPoint(10, "F", "5");
    values[5] = 1;
    expectRefused(writing(), pointNotFound, {"AO command failed (Point=5 is not found)"});
    values.remove(5);
    values[15] = 1;
    listPoint(20, "O", "5");
    expectRefused(writing(), unsupportedAddress, {"AO command failed (Addr=F Unsupported Address Format)"});
}

// --- Reply and path

TEST_F(AnalogWriteListTest, TakesItsReplyOverOnce) {
    list("R", 1, 3);
    list("T", 7);
    expectTakesItsReplyOverOnce(writing());
}

TEST_F(AnalogWriteListTest, CompletesItsReplyWithTheOutcome) {
    list("R", 1, 3);
    expectCompletesItsReplyWithTheOutcome(writing());
}

TEST_F(AnalogWriteListTest, RunsWithoutAReply) {
    list("R", 1, 3);
    expectRunsWithoutAReply(writing());
}

TEST_F(AnalogWriteListTest, GoesAheadOfWaitingPolls) {
    list("R", 1);
    expectGoesAheadOfWaitingPolls(writing());
}

TEST_F(AnalogWriteListTest, IsAcceptedAndReportedWhenThereIsNoLink) {
    list("R", 1, 3);
    expectReportsAMissingLink(writing());
}

TEST_F(AnalogWriteListTest, DisplacesAWaitingOneWithAsManyTelegramsAndNoOther) {
    list("R", 1, 3);
    EXPECT_EQ(write(), accepted);
    values.clear();
    list("T", 1, 3);
    list("R", 9);
    EXPECT_EQ(write(), accepted); // two telegrams
    values.clear();
    list("C", 1, 3);
    EXPECT_EQ(write(), accepted);
    const QList<SentRequest> sent = sendPending();
    ASSERT_EQ(sent.size(), 2);
    EXPECT_EQ(sent[0].items, (Items{writeItem(10, 1, 3, words(1, 3))}));
    EXPECT_EQ(sent[1].items.size(), 2);
}
