#include "CommandBench.h"

#include <limits>
#include <random>

using Halvex::PointDataType;

namespace {

using Items = QList<SBusRequestItem>;
using Values = QMap<unsigned, double>;

const QString label = QStringLiteral("Analog Write List");

QByteArray word(int value) {
    const auto bits = static_cast<quint32>(value);
    QByteArray bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.append(static_cast<char>(bits >> shift & 0xFF));
    return bytes;
}

// The words of `count` elements from `first`, each holding its element number.
QByteArray words(int first, int count) {
    QByteArray bytes;
    for (int number = first; number < first + count; ++number)
        bytes += word(number);
    return bytes;
}

class AnalogWriteListTest : public CommandBench {
protected:
    // Adds a point for the element, and its number as the value to write.
    void list(const char* media, int number) { listValue(media, number, number); }

    void list(const char* media, int first, int last) {
        for (int number = first; number <= last; ++number)
            list(media, number);
    }

    void listValue(const char* media, int number, double value, PointDataType type = PointDataType::Integer) {
        addAnalog(nextPoint, media, QByteArray::number(number).constData(), type);
        values[nextPoint++] = value;
    }

    // A point with any texts in its address fields.
    void listPoint(unsigned pointNumber, const char* address, const char* number, double value = 1) {
        addAnalog(pointNumber, address, number);
        values[pointNumber] = value;
    }

    int write(CReply* reply = nullptr) { return rtu->analogWriteList(values, reply); }

    Command writing() {
        return [this](CReply* reply) { return write(reply); };
    }

    Items telegrams() {
        EXPECT_EQ(write(), accepted);
        return sendOnlyRequest().items;
    }

    // The data of the only telegram, for the only value.
    QByteArray bytesFor(const char* media, double value, PointDataType type = PointDataType::Integer) {
        values.clear();
        listValue(media, 5, value, type);
        const Items items = telegrams();
        EXPECT_EQ(items.size(), 1);
        return items.isEmpty() ? QByteArray() : toHex(items.first().data);
    }

    void expectAddressRefused(const char* address, const char* number) {
        values.clear();
        listPoint(1, address, number);
        expectRefused(writing(), unsupportedAddress,
                      {QStringLiteral("AO command failed (Addr=") + QString::fromUtf8(address) +
                       " Unsupported Address Format)"});
    }

    Values values;
    unsigned nextPoint = 1;
};

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

// --- Kinds

TEST_F(AnalogWriteListTest, SendsCountersThenRegistersThenTimers) {
    list("T", 1);
    list("R", 2);
    list("C", 3);
    EXPECT_EQ(telegrams(), (Items{writeItem(10, 3, 0, word(3)), writeItem(14, 2, 0, word(2)),
                                  writeItem(15, 1, 0, word(1))}));
}

TEST_F(AnalogWriteListTest, SendsRegistersBeforeTimers) {
    list("T", 1, 2);
    list("R", 8, 9);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 8, 2, words(8, 2)), writeItem(15, 1, 2, words(1, 2))}));
}

TEST_F(AnalogWriteListTest, DoesNotRunFromOneKindIntoTheNext) {
    list("C", 1, 2);
    list("R", 3, 4);
    list("T", 5, 6);
    EXPECT_EQ(telegrams(), (Items{writeItem(10, 1, 2, words(1, 2)), writeItem(14, 3, 2, words(3, 2)),
                                  writeItem(15, 5, 2, words(5, 2))}));
}

TEST_F(AnalogWriteListTest, KeepsEqualNumbersOfTwoKindsApart) {
    listValue("R", 5, 1);
    listValue("T", 5, 2);
    listValue("C", 5, 3);
    EXPECT_EQ(telegrams(), (Items{writeItem(10, 5, 0, word(3)), writeItem(14, 5, 0, word(1)),
                                  writeItem(15, 5, 0, word(2))}));
}

// --- Runs

TEST_F(AnalogWriteListTest, PutsConsecutiveElementsIntoOneTelegramAndALoneLastOneIntoAnotherWithCountZero) {
    list("R", 100, 102);
    list("R", 104);
    const Items items = telegrams();
    EXPECT_EQ(items, (Items{writeItem(14, 100, 3, words(100, 3)), writeItem(14, 104, 0, word(104))}));
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items[0].data.size(), 12);
    EXPECT_EQ(items[1].data.size(), 4);
}

TEST_F(AnalogWriteListTest, SendsTheOnlyPointOfAKindWithCountZero) {
    list("R", 5);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 5, 0, word(5))}));
}

TEST_F(AnalogWriteListTest, SendsALonePointBeforeOthersWithCountOne) {
    list("R", 1);
    list("R", 5, 6);
    list("R", 9);
    list("R", 11, 12);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 1, word(1)), writeItem(14, 5, 2, words(5, 2)),
                                  writeItem(14, 9, 1, word(9)), writeItem(14, 11, 2, words(11, 2))}));
}

TEST_F(AnalogWriteListTest, HasALoneLastPointInEachKind) {
    list("C", 1);
    list("C", 3);
    list("R", 1);
    list("R", 3);
    EXPECT_EQ(telegrams(), (Items{writeItem(10, 1, 1, word(1)), writeItem(10, 3, 0, word(3)),
                                  writeItem(14, 1, 1, word(1)), writeItem(14, 3, 0, word(3))}));
}

TEST_F(AnalogWriteListTest, BreaksARunAtEveryGap) {
    for (int number : {1, 3, 5, 7})
        list("R", number);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 1, word(1)), writeItem(14, 3, 1, word(3)),
                                  writeItem(14, 5, 1, word(5)), writeItem(14, 7, 0, word(7))}));
}

TEST_F(AnalogWriteListTest, OrdersElementsByTheirNumberAndNotByThePoints) {
    listValue("R", 12, 1);
    listValue("R", 9, 2);
    listValue("R", 11, 3);
    listValue("R", 100, 4);
    listValue("R", 10, 5);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 9, 4, word(2) + word(5) + word(3) + word(1)),
                                  writeItem(14, 100, 0, word(4))}));
}

TEST_F(AnalogWriteListTest, StartsAtElementZero) {
    list("R", 0, 2);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 0, 3, words(0, 3))}));
}

TEST_F(AnalogWriteListTest, LaterPointReplacesAnEarlierOneOfTheSameElement) {
    listValue("R", 5, 1);
    listValue("R", 5, 2);
    listValue("R", 6, 3);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 5, 2, word(2) + word(3))}));
}

TEST_F(AnalogWriteListTest, TellsElementsApartByTheirNumberAndNotItsText) {
    listPoint(1, "R", "7", 1);
    listPoint(2, "R", "007", 2);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 7, 0, word(2))}));
}

TEST_F(AnalogWriteListTest, WritesElementZeroForANumberTextThatIsNoNumber) {
    listPoint(1, "R", "many", 3);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 0, 0, word(3))}));
}

TEST_F(AnalogWriteListTest, LooksUpTheValueByThePointsOwnNumberAndWritesZeroWithoutOne) {
    listPoint(1, "R", "5", 111);
    listPoint(2, "R", "6", 222);
    rtu->GetPointList()->GetAnalogPoint(1)->number = 2;
    rtu->GetPointList()->GetAnalogPoint(2)->number = 99;
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 5, 2, word(222) + word(0))}));
}

// --- The limit of 31 values

TEST_F(AnalogWriteListTest, PutsThirtyOneValuesIntoOneTelegram) {
    list("R", 1, 31);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31))}));
}

TEST_F(AnalogWriteListTest, PutsTheThirtySecondConsecutiveValueIntoATelegramOfItsOwnWithCountOne) {
    list("R", 1, 32);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 1, word(32))}));
}

TEST_F(AnalogWriteListTest, SplitsFortyConsecutiveValuesIntoThirtyOneAndNine) {
    list("R", 1, 40);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 9, words(32, 9))}));
}

TEST_F(AnalogWriteListTest, SplitsALongRunEveryThirtyOneValues) {
    list("R", 1, 62);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 31, words(32, 31))}));
    list("R", 63);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 31, words(32, 31)),
                                  writeItem(14, 63, 1, word(63))}));
    list("R", 64, 100);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 31, words(32, 31)),
                                  writeItem(14, 63, 31, words(63, 31)), writeItem(14, 94, 7, words(94, 7))}));
}

TEST_F(AnalogWriteListTest, CarriesTheValueAfterASplitToTheElementThatFollows) {
    list("R", 1, 32);
    list("R", 40);
    EXPECT_EQ(telegrams(),
              (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 2, word(32) + word(40))}));
}

TEST_F(AnalogWriteListTest, GoesOnWithTheRunOfTheValueThatWasCarried) {
    list("R", 1, 32);
    list("R", 40, 42);
    list("R", 50);
    EXPECT_EQ(telegrams(),
              (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 4, word(32) + words(40, 3)),
                     writeItem(14, 50, 0, word(50))}));
}

TEST_F(AnalogWriteListTest, CarriesOneValueAndNotTheNextOneBehindAGap) {
    list("R", 1, 32);
    list("R", 40);
    list("R", 50);
    EXPECT_EQ(telegrams(),
              (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 2, word(32) + word(40)),
                     writeItem(14, 50, 0, word(50))}));
}

TEST_F(AnalogWriteListTest, CarriesAValueAfterALaterSplitToo) {
    list("R", 1, 63);
    list("R", 70);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 31, words(32, 31)),
                                  writeItem(14, 63, 2, word(63) + word(70))}));
}

TEST_F(AnalogWriteListTest, CarriesNothingWhenARunOfThirtyOneEndsAtAGap) {
    list("R", 1, 31);
    list("R", 40);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 40, 0, word(40))}));
    list("R", 50);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 40, 1, word(40)),
                                  writeItem(14, 50, 0, word(50))}));
}

TEST_F(AnalogWriteListTest, CarriesNothingWithinARunOfThirtyThreeOrMore) {
    list("R", 1, 33);
    list("R", 40);
    EXPECT_EQ(telegrams(), (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 2, words(32, 2)),
                                  writeItem(14, 40, 0, word(40))}));
}

TEST_F(AnalogWriteListTest, CarriesNothingIntoTheNextKind) {
    list("C", 1, 32);
    list("R", 40);
    EXPECT_EQ(telegrams(), (Items{writeItem(10, 1, 31, words(1, 31)), writeItem(10, 32, 1, word(32)),
                                  writeItem(14, 40, 0, word(40))}));
}

TEST_F(AnalogWriteListTest, CountsACarriedValueTowardsTheLimit) {
    list("R", 1, 32);
    list("R", 40, 69); // with 32 in front: 31 values
    EXPECT_EQ(telegrams(),
              (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 31, word(32) + words(40, 30))}));
    list("R", 70);
    EXPECT_EQ(telegrams(),
              (Items{writeItem(14, 1, 31, words(1, 31)), writeItem(14, 32, 31, word(32) + words(40, 30)),
                     writeItem(14, 70, 1, word(70))}));
}

TEST_F(AnalogWriteListTest, CountsValuesAndNotBytesTowardsTheLimit) {
    for (int number = 1; number <= 32; ++number)
        listValue("R", number, 1, PointDataType::Float);
    const Items items = telegrams();
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items[0].count, 31u);
    EXPECT_EQ(items[0].data.size(), 31 * 8);
    EXPECT_EQ(items[1].count, 1u);
    EXPECT_EQ(items[1].data.size(), 8);
}

TEST_F(AnalogWriteListTest, LandsEveryValueAtItsOwnElementAsLongAsNoRunIsLongerThanThirtyOne) {
    std::mt19937 random(4);
    for (int repetition = 0; repetition < 200; ++repetition) {
        values.clear();
        QMap<int, QByteArray> wanted;
        int number = static_cast<int>(random() % 100);
        const int runs = 1 + static_cast<int>(random() % 8);
        for (int run = 0; run < runs; ++run) {
            const int length = 1 + static_cast<int>(random() % 31);
            for (int i = 0; i < length; ++i, ++number) {
                const int value = static_cast<int>(random());
                listValue("R", number, value);
                wanted[number] = word(value);
            }
            number += 1 + static_cast<int>(random() % 50);
        }
        QMap<int, QByteArray> landed;
        for (const SBusRequestItem& item : telegrams())
            for (int offset = 0; offset < item.data.size(); offset += 4)
                landed[static_cast<int>(item.address) + offset / 4] = item.data.mid(offset, 4);
        ASSERT_EQ(landed, wanted) << repetition;
    }
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
