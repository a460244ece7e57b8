#include "CommandBench.h"

#include <HalvexDriverComponent/CLogger.h>

#include <limits>
#include <thread>
#include <vector>

namespace {

constexpr signed char off = 0;
constexpr signed char on = 1;

// Point 20 is an output; the test sets up its addresses and values.
class StatusWriteTest : public CommandBench {
protected:
    static constexpr unsigned pointId = 20;

    void setOutputs(const char* firstAddress, const char* firstValue = "", const char* secondAddress = "",
                    const char* secondValue = "") {
        output->firstOutputAddress = QString::fromUtf8(firstAddress);
        output->firstOutputValue = QString::fromUtf8(firstValue);
        output->secondOutputAddress = QString::fromUtf8(secondAddress);
        output->secondOutputValue = QString::fromUtf8(secondValue);
    }

    void makePulse(unsigned widthMs) {
        output->pulse = true;
        output->pulseWidthMs = widthMs;
    }

    int write(signed char command, CReply* reply = nullptr) {
        return rtu->statusWrite(pointId, command, reply);
    }

    // Command on point 20, as the checks common to all commands want it.
    Command switching(signed char command) {
        return [this, command](CReply* reply) { return write(command, reply); };
    }

    // The only telegram that a command sends.
    SBusRequestItem telegramOf(signed char command) {
        EXPECT_EQ(write(command), accepted);
        const SentRequest request = sendOnlyRequest();
        EXPECT_EQ(request.items.size(), 1);
        return request.items.isEmpty() ? SBusRequestItem{} : request.items.first();
    }

    // The byte that is written at O12 with `text` as the first output value.
    QByteArray byteFor(signed char command, const char* text) {
        setOutputs("O12", text);
        return toHex(telegramOf(command).data);
    }

    void expectAddressRefused(signed char command, const QString& loggedAddress) {
        expectRefused(
            switching(command), unsupportedAddress,
            {QStringLiteral("BO command failed (Addr=") + loggedAddress + " Unsupported Address Format)"});
    }

    StatusPoint* const output = addStatus(pointId, "I5");
};

// The two telegrams of a release.
QList<SBusRequestItem> releaseOf(quint32 command, quint32 address) {
    return {writeItem(command, address, 0, hex("01")), writeItem(command, address, 0, hex("00"))};
}

} // namespace

// --- The request

TEST_F(StatusWriteTest, SendsOneWriteOfOneByteLabelledStatusWrite) {
    setOutputs("O12");
    EXPECT_EQ(write(on), accepted);
    const SentRequest request = sendOnlyRequest();
    EXPECT_EQ(request.name, QStringLiteral("Status Write"));
    EXPECT_EQ(request.rtu, rtu);
    EXPECT_EQ(request.reply, nullptr);
    EXPECT_EQ(request.items, (QList{writeItem(13, 12, 0, hex("01"))}));
}

TEST_F(StatusWriteTest, LogsNothingItselfWhenItIsAccepted) {
    setOutputs("O12");
    EXPECT_EQ(write(on), accepted);
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(StatusWriteTest, DoesNotTranslateItsLabel) {
    const MarkingTranslator ofBase("CRtu");
    const MarkingTranslator ofOwn("SBusRtu");
    setOutputs("O12");
    write(on);
    EXPECT_EQ(sendOnlyRequest().name, QStringLiteral("Status Write"));
}

TEST_F(StatusWriteTest, TakesTheWriteCommandOfEachMedia) {
    const std::pair<const char*, quint32> rows[] = {
        {"C3", 10}, {"F3", 11}, {"O3", 13}, {"R3", 14}, {"T3", 15}};
    for (const auto& [address, code] : rows) {
        setOutputs(address);
        EXPECT_EQ(telegramOf(on), writeItem(code, 3, 0, hex("01"))) << address;
        EXPECT_EQ(telegramOf(off), writeItem(code, 3, 0, hex("00"))) << address;
    }
}

TEST_F(StatusWriteTest, SendsAnInputWithTheCommandCodeThatWasPreset) {
    setOutputs("I12");
    EXPECT_EQ(telegramOf(on), writeItem(0, 12, 0, hex("01")));
}

TEST_F(StatusWriteTest, SendsEveryOtherLetterWithTheCommandCodeThatWasPreset) {
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        if (QByteArrayLiteral("CFORT").contains(letter))
            continue;
        const QByteArray address = QByteArray(1, letter) + "7";
        setOutputs(address.constData());
        EXPECT_EQ(telegramOf(on), writeItem(0, 7, 0, hex("01"))) << address;
    }
}

TEST_F(StatusWriteTest, ReadsTheElementNumberAsDecimal) {
    const std::pair<const char*, quint32> rows[] = {{"O0", 0},        {"O7", 7},       {"O007", 7},
                                                    {"O00010", 10},   {"O8191", 8191}, {"O65536", 65536},
                                                    {"O99999", 99999}};
    for (const auto& [address, number] : rows) {
        setOutputs(address);
        EXPECT_EQ(telegramOf(on).address, number) << address;
    }
}

TEST_F(StatusWriteTest, WritesTheOutputAndNotTheInputThatIsRead) {
    output->firstAddress = QStringLiteral("I5");
    output->secondAddress = QStringLiteral("F6");
    setOutputs("O12", "", "F13");
    EXPECT_EQ(telegramOf(off), writeItem(13, 12, 0, hex("00")));
    EXPECT_EQ(telegramOf(on), writeItem(11, 13, 0, hex("01")));
}

TEST_F(StatusWriteTest, ServesAPointBeforeAndAfterThePollsAreBuiltAndLeavesItsRecordAlone) {
    setOutputs("O12", "5", "F13", "6");
    EXPECT_EQ(telegramOf(on), writeItem(11, 13, 0, hex("06")));
    rtu->InitRtu();
    rtu->InitRtu();
    EXPECT_EQ(telegramOf(on), writeItem(11, 13, 0, hex("06")));
    EXPECT_EQ(telegramOf(off), writeItem(13, 12, 0, hex("05")));
    EXPECT_EQ(output->firstOutputAddress, QStringLiteral("O12"));
    EXPECT_EQ(output->firstOutputValue, QStringLiteral("5"));
    EXPECT_EQ(output->secondOutputAddress, QStringLiteral("F13"));
    EXPECT_EQ(output->secondOutputValue, QStringLiteral("6"));
}

TEST_F(StatusWriteTest, FindsThePointByItsNumber) {
    setOutputs("O12");
    addStatus(21, "")->firstOutputAddress = QStringLiteral("F900");
    EXPECT_EQ(rtu->statusWrite(21, on, nullptr), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(11, 900, 0, hex("01"))}));
}

TEST_F(StatusWriteTest, DoesNotTakeAnAnalogPointForAStatusPoint) {
    addAnalog(500, "R1");
    expectRefused([this](CReply* reply) { return rtu->statusWrite(500, on, reply); }, pointNotFound,
                  {"BO command failed (Point=500 is not found)"});
}

// --- Switching off

TEST_F(StatusWriteTest, OffWithoutAValueWritesZero) {
    EXPECT_EQ(byteFor(off, ""), "00");
}

TEST_F(StatusWriteTest, OffWritesTheFirstValue) {
    EXPECT_EQ(byteFor(off, "0"), "00");
    EXPECT_EQ(byteFor(off, "1"), "01");
    EXPECT_EQ(byteFor(off, "200"), "C8");
}

TEST_F(StatusWriteTest, OffNeverUsesTheSecondAddressOrValue) {
    setOutputs("O12", "", "F13", "9");
    EXPECT_EQ(telegramOf(off), writeItem(13, 12, 0, hex("00")));
    setOutputs("O12", "3", "F13", "9");
    EXPECT_EQ(telegramOf(off), writeItem(13, 12, 0, hex("03")));
}

TEST_F(StatusWriteTest, OffDoesNotMindAMalformedSecondAddress) {
    setOutputs("O12", "", "nowhere");
    EXPECT_EQ(telegramOf(off), writeItem(13, 12, 0, hex("00")));
}

TEST_F(StatusWriteTest, OffWithAMalformedFirstAddressIsRefusedWhateverTheSecond) {
    setOutputs("o12", "", "F13");
    expectAddressRefused(off, "o12");
}

// --- Switching on

TEST_F(StatusWriteTest, OnWithoutASecondAddressAndAFirstValueWritesOneToTheFirst) {
    setOutputs("O12");
    EXPECT_EQ(telegramOf(on), writeItem(13, 12, 0, hex("01")));
}

TEST_F(StatusWriteTest, OnWithoutASecondAddressWritesTheFirstValueToTheFirst) {
    setOutputs("O12", "7");
    EXPECT_EQ(telegramOf(on), writeItem(13, 12, 0, hex("07")));
    setOutputs("O12", "0");
    EXPECT_EQ(telegramOf(on), writeItem(13, 12, 0, hex("00")));
}

TEST_F(StatusWriteTest, OnWithoutASecondAddressPassesTheSecondValueOver) {
    setOutputs("O12", "", "", "9");
    EXPECT_EQ(telegramOf(on), writeItem(13, 12, 0, hex("01")));
    setOutputs("O12", "7", "", "9");
    EXPECT_EQ(telegramOf(on), writeItem(13, 12, 0, hex("07")));
}

TEST_F(StatusWriteTest, OnWithASecondAddressWritesTheSecondValueThere) {
    setOutputs("O12", "7", "F13", "9");
    EXPECT_EQ(telegramOf(on), writeItem(11, 13, 0, hex("09")));
    setOutputs("O12", "7", "F13", "0");
    EXPECT_EQ(telegramOf(on), writeItem(11, 13, 0, hex("00")));
}

TEST_F(StatusWriteTest, OnWithASecondAddressAndNoSecondValueWritesOneWhateverTheFirstValue) {
    setOutputs("O12", "7", "F13", "");
    EXPECT_EQ(telegramOf(on), writeItem(11, 13, 0, hex("01")));
}

TEST_F(StatusWriteTest, OnWithASecondAddressDoesNotMindAMalformedFirst) {
    setOutputs("nowhere", "", "F13");
    EXPECT_EQ(telegramOf(on), writeItem(11, 13, 0, hex("01")));
    setOutputs("", "", "F13");
    EXPECT_EQ(telegramOf(on), writeItem(11, 13, 0, hex("01")));
}

// --- The value

TEST_F(StatusWriteTest, KeepsTheLowEightBitsOfTheValue) {
    for (signed char command : {off, on}) {
        EXPECT_EQ(byteFor(command, "255"), "FF");
        EXPECT_EQ(byteFor(command, "256"), "00");
        EXPECT_EQ(byteFor(command, "257"), "01");
        EXPECT_EQ(byteFor(command, "-1"), "FF");
        EXPECT_EQ(byteFor(command, "2147483647"), "FF");
        EXPECT_EQ(byteFor(command, "-2147483648"), "00");
    }
}

TEST_F(StatusWriteTest, CountsAValueTextThatIsNoWholeNumberAsZero) {
    for (signed char command : {off, on})
        for (const char* text : {"on", "x", "1.5", "0x10", "5000000000", " ", "1 1"})
            EXPECT_EQ(byteFor(command, text), "00") << text;
}

TEST_F(StatusWriteTest, CutsTheSecondValueToEightBitsToo) {
    setOutputs("O12", "", "F13", "258");
    EXPECT_EQ(telegramOf(on), writeItem(11, 13, 0, hex("02")));
    setOutputs("O12", "", "F13", "on");
    EXPECT_EQ(telegramOf(on), writeItem(11, 13, 0, hex("00")));
}

// --- Refusals

TEST_F(StatusWriteTest, NeedsAConnectedChannel) {
    setOutputs("O12");
    makePulse(0);
    expectNeedsAConnectedChannel(switching(off));
    expectNeedsAConnectedChannel(switching(on));
}

TEST_F(StatusWriteTest, LooksAtTheChannelBeforeAnythingElse) {
    setOutputs("nowhere");
    expectNeedsAConnectedChannel(switching(on));
    expectNeedsAConnectedChannel(switching(2));
    expectNeedsAConnectedChannel([this](CReply* reply) { return rtu->statusWrite(999, on, reply); });
}

TEST_F(StatusWriteTest, GoesByTheChannelsConnectionAndNotTheRtus) {
    setOutputs("O12");
    rtu->SetConnect(false, false);
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendPending().size(), 1);
}

TEST_F(StatusWriteTest, RefusesAndLogsAnUnknownPoint) {
    expectRefused([this](CReply* reply) { return rtu->statusWrite(999, on, reply); }, pointNotFound,
                  {"BO command failed (Point=999 is not found)"});
    expectRefused([this](CReply* reply) { return rtu->statusWrite(4'294'967'295u, off, reply); },
                  pointNotFound, {"BO command failed (Point=4294967295 is not found)"});
}

TEST_F(StatusWriteTest, LooksForThePointBeforeItLooksAtTheCommand) {
    expectRefused([this](CReply* reply) { return rtu->statusWrite(999, 2, reply); }, pointNotFound,
                  {"BO command failed (Point=999 is not found)"});
}

TEST_F(StatusWriteTest, RefusesEveryOtherCommandLikeAMissingPointAndNamesPointAndCommand) {
    setOutputs("O12");
    expectRefused(switching(2), pointNotFound, {"BO command failed (Point=20, Unsupported CMD=2)"});
    expectRefused(switching(-1), pointNotFound, {"BO command failed (Point=20, Unsupported CMD=-1)"});
    expectRefused(switching(127), pointNotFound, {"BO command failed (Point=20, Unsupported CMD=127)"});
    expectRefused(switching(-128), pointNotFound, {"BO command failed (Point=20, Unsupported CMD=-128)"});
}

TEST_F(StatusWriteTest, AcceptsNoCommandButZeroAndOne) {
    setOutputs("O12");
    for (int command = std::numeric_limits<signed char>::min();
         command <= std::numeric_limits<signed char>::max(); ++command)
        EXPECT_EQ(write(static_cast<signed char>(command)),
                  command == 0 || command == 1 ? accepted : pointNotFound)
            << command;
}

TEST_F(StatusWriteTest, LooksAtTheCommandBeforeItLooksAtTheAddress) {
    setOutputs("nowhere");
    expectRefused(switching(2), pointNotFound, {"BO command failed (Point=20, Unsupported CMD=2)"});
}

TEST_F(StatusWriteTest, RefusesAndLogsAnAddressThatIsNotOneLetterAndOneToFiveDigits) {
    for (const char* address : {"O 12", "o12", "O", "12", "OO12", "O123456", "O-1", "O+1", "O1x", " O12",
                                "O12 ", "O1 2", "O12.0", "X12.3", "O\t12", "",
                                "\xC3\x84"
                                "12"}) {
        setOutputs(address);
        expectAddressRefused(off, QString::fromUtf8(address));
        expectAddressRefused(on, QString::fromUtf8(address));
    }
}

TEST_F(StatusWriteTest, NamesTheFirstAddressWhenTheSecondWasTheMalformedOne) {
    setOutputs("O12", "", "o13");
    expectAddressRefused(on, "O12");
    setOutputs("", "", "o13");
    expectAddressRefused(on, "");
}

TEST_F(StatusWriteTest, TakesASecondAddressOfABlankForAnAddress) {
    setOutputs("O12", "", " ");
    expectAddressRefused(on, "O12");
}

TEST_F(StatusWriteTest, ReleasesNothingAfterARefusal) {
    setOutputs("o12");
    makePulse(10);
    expectAddressRefused(on, "o12"); // looks at what falls due, too
    setOutputs("O12");
    expectRefused(switching(3), pointNotFound, {"BO command failed (Point=20, Unsupported CMD=3)"});
}

// --- Reply and path

TEST_F(StatusWriteTest, TakesItsReplyOverOnce) {
    setOutputs("O12");
    expectTakesItsReplyOverOnce(switching(off));
    expectTakesItsReplyOverOnce(switching(on));
}

TEST_F(StatusWriteTest, CompletesItsReplyWithTheOutcome) {
    setOutputs("O12");
    expectCompletesItsReplyWithTheOutcome(switching(on));
}

TEST_F(StatusWriteTest, RunsWithoutAReply) {
    setOutputs("O12");
    expectRunsWithoutAReply(switching(on));
}

TEST_F(StatusWriteTest, GoesAheadOfWaitingPolls) {
    setOutputs("O12");
    expectGoesAheadOfWaitingPolls(switching(off));
    expectGoesAheadOfWaitingPolls(switching(on));
}

TEST_F(StatusWriteTest, IsAcceptedAndReportedWhenThereIsNoLink) {
    setOutputs("O12");
    expectReportsAMissingLink(switching(on));
}

TEST_F(StatusWriteTest, DisplacesAWaitingOneOfTheSameRtuWhateverItsPoint) {
    setOutputs("O12");
    addStatus(21, "")->firstOutputAddress = QStringLiteral("O13");
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(rtu->statusWrite(21, off, nullptr), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(13, 13, 0, hex("00"))}));
}

// --- Pulses

TEST_F(StatusWriteTest, APulseIsWrittenNowAndReleasedAfterItsWidth) {
    setOutputs("O12");
    makePulse(500);
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(13, 12, 0, hex("01"))}));
    EXPECT_TRUE(sendAfter(499).isEmpty());
    const QList<SentRequest> released = sendAfter(1);
    ASSERT_EQ(released.size(), 1);
    EXPECT_EQ(released[0].items, releaseOf(13, 12));
    EXPECT_TRUE(sendAfter(3'600'000).isEmpty()) << "released twice";
}

TEST_F(StatusWriteTest, AReleaseIsLabelledStatusWriteAndHasNoReply) {
    setOutputs("O12");
    makePulse(500);
    const int before = CReply::liveCount();
    auto* reply = new CReply(&channel);
    EXPECT_EQ(write(on, reply), accepted);
    EXPECT_EQ(sendOnlyRequest().reply, reply);
    EXPECT_EQ(reply->wait(10'000), Halvex::DriverErrorResult::Success);
    EXPECT_EQ(CReply::liveCount(), before);
    const QList<SentRequest> released = sendAfter(500);
    ASSERT_EQ(released.size(), 1);
    EXPECT_EQ(released[0].name, QStringLiteral("Status Write"));
    EXPECT_EQ(released[0].rtu, rtu);
    EXPECT_EQ(released[0].reply, nullptr);
}

TEST_F(StatusWriteTest, AReleaseGoesWhereThePulseWent) {
    setOutputs("O12", "", "F13");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(11, 13, 0, hex("01"))}));
    const QList<SentRequest> released = sendAfter(100);
    ASSERT_EQ(released.size(), 1);
    EXPECT_EQ(released[0].items, releaseOf(11, 13));
}

TEST_F(StatusWriteTest, AReleaseHasTheCommandOfEachMedia) {
    const std::pair<const char*, quint32> rows[] = {{"C3", 10}, {"F3", 11}, {"O3", 13},
                                                    {"R3", 14}, {"T3", 15}, {"I3", 0}};
    for (const auto& [address, code] : rows) {
        setOutputs(address);
        makePulse(100);
        EXPECT_EQ(write(on), accepted);
        EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(code, 3, 0, hex("01"))})) << address;
        const QList<SentRequest> released = sendAfter(100);
        ASSERT_EQ(released.size(), 1) << address;
        EXPECT_EQ(released[0].items, releaseOf(code, 3)) << address;
    }
}

TEST_F(StatusWriteTest, APulseOfNoWidthIsReleasedWithTheNextLookAtWhatIsDue) {
    setOutputs("O12");
    makePulse(0);
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendPending().size(), 1) << "released before anything fell due";
    const QList<SentRequest> released = sendAfter(0);
    ASSERT_EQ(released.size(), 1);
    EXPECT_EQ(released[0].items, releaseOf(13, 12));
}

TEST_F(StatusWriteTest, TheWidthCountsFromTheCommand) {
    setOutputs("O12");
    makePulse(500);
    now = 7'000;
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendAfter(499).size(), 1) << "the pulse itself alone";
    EXPECT_EQ(sendAfter(1).size(), 1);
}

TEST_F(StatusWriteTest, OnlyAValueOfExactlyOneIsReleased) {
    makePulse(0);
    for (const char* value : {"0", "2", "3", "128", "129", "255", "256", "-1", "on"}) {
        setOutputs("O12", value);
        EXPECT_EQ(write(on), accepted);
        EXPECT_EQ(sendPending().size(), 1) << value;
        EXPECT_TRUE(sendAfter(0).isEmpty()) << value;
    }
    for (const char* value : {"", "1", "257", "-255"}) {
        setOutputs("O12", value);
        EXPECT_EQ(write(on), accepted);
        EXPECT_EQ(sendPending().size(), 1) << value;
        const QList<SentRequest> released = sendAfter(0);
        ASSERT_EQ(released.size(), 1) << value;
        EXPECT_EQ(released[0].items, releaseOf(13, 12)) << value;
    }
}

TEST_F(StatusWriteTest, APulsePointThatIsSwitchedOffIsNotReleased) {
    setOutputs("O12");
    makePulse(0);
    EXPECT_EQ(write(off), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(13, 12, 0, hex("00"))}));
    EXPECT_TRUE(sendAfter(3'600'000).isEmpty());
}

TEST_F(StatusWriteTest, APulsePointWhoseOffValueIsOneIsReleasedAfterItsOff) {
    setOutputs("O12", "1");
    makePulse(50);
    EXPECT_EQ(write(off), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(13, 12, 0, hex("01"))}));
    const QList<SentRequest> released = sendAfter(50);
    ASSERT_EQ(released.size(), 1);
    EXPECT_EQ(released[0].items, releaseOf(13, 12));
}

TEST_F(StatusWriteTest, APointThatIsNoPulseIsNotReleasedWhateverItsWidth) {
    setOutputs("O12");
    output->pulse = false;
    output->pulseWidthMs = 10;
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendPending().size(), 1);
    EXPECT_TRUE(sendAfter(3'600'000).isEmpty());
}

TEST_F(StatusWriteTest, APulseWithoutADelayedQueueIsJustWritten) {
    setOutputs("O12");
    makePulse(0);
    rtu->attachProtocol(protocol, nullptr);
    EXPECT_EQ(write(on), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(13, 12, 0, hex("01"))}));
    EXPECT_TRUE(sendAfter(3'600'000).isEmpty());
}

TEST_F(StatusWriteTest, AReleaseQueuesBehindWhatWaitsLikeAPoll) {
    addAnalog(1, "R1");
    setOutputs("O12");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    sendPending();
    EXPECT_EQ(request(Halvex::PollKind::Analog), accepted);
    now += 100;
    releases.dispatchDue();
    EXPECT_EQ(namesSent(), (QStringList{"analog poll", "Status Write"}));
}

TEST_F(StatusWriteTest, AReleaseIsDroppedWhileAnotherOneOfItsRtuWaits) {
    addStatus(21, "");
    StatusPoint* const other = rtu->GetPointList()->GetStatusPoint(21);
    other->firstOutputAddress = QStringLiteral("O13");
    other->pulse = true;
    other->pulseWidthMs = 100;
    setOutputs("O12");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    sendPending();
    EXPECT_EQ(rtu->statusWrite(21, on, nullptr), accepted);
    sendPending();
    const QList<SentRequest> released = sendAfter(100);
    ASSERT_EQ(released.size(), 1);
    EXPECT_EQ(released[0].items, releaseOf(13, 12));
}

TEST_F(StatusWriteTest, AReleaseIsNoDuplicateOfACommandThatWaits) {
    setOutputs("O12");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    const QList<SentRequest> sent = sendAfter(100);
    ASSERT_EQ(sent.size(), 2) << "one telegram against two";
    EXPECT_EQ(sent[0].items, (QList{writeItem(13, 12, 0, hex("01"))}));
    EXPECT_EQ(sent[1].items, releaseOf(13, 12));
}

TEST_F(StatusWriteTest, AReleaseThatFallsDueWithoutALinkIsDroppedWithoutAWord) {
    setOutputs("O12");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    sendPending();
    log.clear();
    protocol->setLink(nullptr);
    EXPECT_TRUE(sendAfter(100).isEmpty());
    protocol->setLink(&link);
    EXPECT_TRUE(sendAfter(100).isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(StatusWriteTest, AReleaseIsScheduledEvenWhenThePulseItselfFoundNoLink) {
    setOutputs("O12");
    makePulse(100);
    protocol->setLink(nullptr);
    EXPECT_EQ(write(on), accepted);
    protocol->setLink(&link);
    const QList<SentRequest> released = sendAfter(100);
    ASSERT_EQ(released.size(), 1);
    EXPECT_EQ(released[0].items, releaseOf(13, 12));
}

TEST_F(StatusWriteTest, AReleaseKeepsTheAddressThatThePointHadAtTheCommand) {
    setOutputs("O12");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    sendPending();
    setOutputs("O99");
    const QList<SentRequest> released = sendAfter(100);
    ASSERT_EQ(released.size(), 1);
    EXPECT_EQ(released[0].items, releaseOf(13, 12));
}

TEST_F(StatusWriteTest, EachPulseIsReleasedAfterItsOwnWidth) {
    setOutputs("O12");
    makePulse(100);
    EXPECT_EQ(write(on), accepted);
    sendPending();
    now += 60;
    EXPECT_EQ(write(on), accepted);
    sendPending();
    EXPECT_EQ(sendAfter(40).size(), 1);
    EXPECT_TRUE(sendAfter(59).isEmpty());
    EXPECT_EQ(sendAfter(1).size(), 1);
}

// --- Threads

TEST_F(StatusWriteTest, PulsesGivenOnManyThreadsAreAllReleased) {
    constexpr unsigned threadCount = 4;
    constexpr unsigned pulsesEach = 50;
    constexpr unsigned firstPoint = 1'000;
    // Each pulse with a width of its own: releases that wait together would displace each other.
    for (unsigned i = 0; i < threadCount * pulsesEach; ++i) {
        StatusPoint* const point = addStatus(firstPoint + i, "");
        point->firstOutputAddress = QStringLiteral("O%1").arg(i);
        point->pulse = true;
        point->pulseWidthMs = i + 1;
    }
    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < threadCount; ++thread)
        threads.emplace_back([this, thread] {
            for (unsigned i = thread * pulsesEach; i < (thread + 1) * pulsesEach; ++i)
                EXPECT_EQ(rtu->statusWrite(firstPoint + i, on, nullptr), accepted);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(sendPending().size(), 1) << "the pulses displace each other";
    for (unsigned i = 0; i < threadCount * pulsesEach; ++i) {
        const QList<SentRequest> released = sendAfter(1);
        ASSERT_EQ(released.size(), 1) << i;
        EXPECT_EQ(released[0].items, releaseOf(13, i));
    }
}
