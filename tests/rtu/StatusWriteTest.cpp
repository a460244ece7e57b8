#include "StatusWriteBench.h"

namespace {

using StatusWriteTest = StatusWriteBench;

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

TEST_F(StatusWriteTest, PassesOverBlanksAroundAValueButNotWithinIt) {
    for (const signed char command : {off, on}) {
        for (const char* text : {" 7", "7 ", "  7  ", "\t7", "7\n"})
            EXPECT_EQ(byteFor(command, text), "07") << '"' << text << '"';
        for (const char* text : {"1 2", "- 1", "7 x"})
            EXPECT_EQ(byteFor(command, text), "00") << '"' << text << '"';
    }
}

TEST_F(StatusWriteTest, TakesAValueOfBlanksForATextThatIsNoNumber) {
    EXPECT_EQ(byteFor(off, " "), "00");
    EXPECT_EQ(byteFor(on, " "), "00") << "only an empty text stands for 1";
}

TEST_F(StatusWriteTest, ReadsTheValueAsDecimalAndSigned) {
    for (const auto& [text, byte] :
         {std::pair{"010", "0A"}, std::pair{"0x10", "00"}, std::pair{"+5", "05"}, std::pair{"-1", "FF"},
          std::pair{"2147483647", "FF"}, std::pair{"2147483648", "00"}, std::pair{"4294967295", "00"}})
        EXPECT_EQ(byteFor(on, text), byte) << text;
}

TEST_F(StatusWriteTest, TakesDigitsOfAnotherScriptForElementZero) {
    setOutputs("O\331\241\331\242"); // the Arabic-Indic digits 1 and 2
    EXPECT_EQ(telegramOf(on), writeItem(13, 0, 0, hex("01")));
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
    for (int command = -128; command <= 127; ++command)
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
                                "O12 ", "O1 2", "O12.0", "X12.3", "O\t12", "", "\303\20412"}) {
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
