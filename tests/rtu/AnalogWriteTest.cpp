#include "CommandBench.h"

#include <cmath>
#include <limits>
#include <set>
#include <thread>
#include <vector>

using Halvex::PointDataType;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// Point 30 is set; the test sets up its address.
class AnalogWriteTest : public CommandBench {
protected:
    static constexpr unsigned pointId = 30;

    void setPoint(const char* address, const char* number = "200",
                  PointDataType type = PointDataType::Integer) {
        AnalogPoint* const point = addAnalog(pointId, address, number, type);
        point->name = QStringLiteral("level");
    }

    int write(double value, CReply* reply = nullptr) { return rtu->analogWrite(pointId, value, reply); }

    Command writing(double value) {
        return [this, value](CReply* reply) { return write(value, reply); };
    }

    SBusRequestItem telegramOf(double value) {
        EXPECT_EQ(write(value), accepted);
        const SentRequest request = sendOnlyRequest();
        EXPECT_EQ(request.items.size(), 1);
        return request.items.isEmpty() ? SBusRequestItem{} : request.items.first();
    }

    QByteArray bytesFor(double value) { return toHex(telegramOf(value).data); }

    QString labelFor(const QString& pointName, double value) {
        setPoint("R");
        rtu->GetPointList()->GetAnalogPoint(pointId)->name = pointName;
        EXPECT_EQ(write(value), accepted);
        return sendOnlyRequest().name;
    }
};

} // namespace

// --- The request

TEST_F(AnalogWriteTest, SendsOneWriteOfOneElement) {
    setPoint("R", "200");
    EXPECT_EQ(write(12.7), accepted);
    const SentRequest request = sendOnlyRequest();
    EXPECT_EQ(request.name, QStringLiteral("Set Point level 12.7"));
    EXPECT_EQ(request.rtu, rtu);
    EXPECT_EQ(request.reply, nullptr);
    EXPECT_EQ(request.items, (QList{writeItem(14, 200, 1, hex("00 00 00 0C"))}));
}

TEST_F(AnalogWriteTest, LogsNothingItselfWhenItIsAccepted) {
    setPoint("R");
    EXPECT_EQ(write(1), accepted);
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(AnalogWriteTest, TakesTheWriteCommandOfEachMedia) {
    setPoint("R");
    EXPECT_EQ(telegramOf(1), writeItem(14, 200, 1, hex("00 00 00 01")));
    setPoint("T");
    EXPECT_EQ(telegramOf(1), writeItem(15, 200, 1, hex("00 00 00 01")));
    setPoint("C");
    EXPECT_EQ(telegramOf(1), writeItem(10, 200, 1, hex("00 00 00 01")));
}

TEST_F(AnalogWriteTest, WritesAPointWhoseAddressWasSplitForThePolls) {
    setPoint("R200", "");
    rtu->InitRtu();
    EXPECT_EQ(telegramOf(7), writeItem(14, 200, 1, hex("00 00 00 07")));
}

TEST_F(AnalogWriteTest, LooksAtTheFirstLetterOfTheAddressAlone) {
    const std::pair<const char*, quint32> rows[] = {{"R200", 14}, {"RTC", 14},   {"TC", 15}, {"Time", 15},
                                                    {"CR", 10},   {"Count", 10}, {"R 1", 14}};
    for (const auto& [address, code] : rows) {
        setPoint(address, "5");
        EXPECT_EQ(telegramOf(1), writeItem(code, 5, 1, hex("00 00 00 01"))) << address;
    }
}

TEST_F(AnalogWriteTest, EncodesByTheMediaThatTheAddressBeginsWith) {
    setPoint("Rx", "5", PointDataType::Float);
    EXPECT_EQ(bytesFor(1.0), "80 00 00 41");
    setPoint("Tx", "5");
    EXPECT_EQ(bytesFor(4'294'967'297.0), "00 00 00 01");
}

TEST_F(AnalogWriteTest, WritesElementZeroWhenThereIsNoNumber) {
    setPoint("R", "");
    EXPECT_EQ(telegramOf(1).address, 0u);
    setPoint("R", "many");
    EXPECT_EQ(telegramOf(1).address, 0u);
    setPoint("R200", "");
    EXPECT_EQ(telegramOf(1).address, 0u) << "the address was not split yet";
}

TEST_F(AnalogWriteTest, ReadsTheElementNumberAsDecimal) {
    const std::pair<const char*, quint32> rows[] = {{"0", 0}, {"007", 7}, {"00010", 10}, {"99999", 99999}};
    for (const auto& [number, address] : rows) {
        setPoint("R", number);
        EXPECT_EQ(telegramOf(1).address, address) << number;
    }
}

TEST_F(AnalogWriteTest, WritesANegativeElementAtTheUnsignedNumberOfTheSameBits) {
    const std::pair<const char*, quint32> rows[] = {
        {"-1", 0xFFFFFFFF}, {"-5", 0xFFFFFFFB}, {"-2147483648", 0x80000000}};
    for (const auto& [number, address] : rows) {
        setPoint("R", number);
        EXPECT_EQ(telegramOf(1).address, address) << number;
    }
}

TEST_F(AnalogWriteTest, WritesElementZeroForANumberBeyondThirtyTwoBits) {
    for (const char* number : {"2147483648", "4294967295", "-2147483649", "99999999999999999999"}) {
        setPoint("R", number);
        EXPECT_EQ(telegramOf(1).address, 0u) << number;
    }
}

// --- The label

TEST_F(AnalogWriteTest, IsLabelledWithPointAndValue) {
    EXPECT_EQ(labelFor("tank 1 level", 12.5), QStringLiteral("Set Point tank 1 level 12.5"));
    EXPECT_EQ(labelFor("", 3), QStringLiteral("Set Point  3"));
    EXPECT_EQ(labelFor(QString::fromUtf8("Durchfluß"), -3), QString::fromUtf8("Set Point Durchfluß -3"));
}

TEST_F(AnalogWriteTest, ShowsTheValueWithSixSignificantDigits) {
    const std::pair<double, const char*> rows[] = {
        {0, "0"},
        {100, "100"},
        {0.1, "0.1"},
        {0.1234567, "0.123457"},
        {123456, "123456"},
        {1234567, "1.23457e+06"},
        {1e10, "1e+10"},
        {0.0001, "0.0001"},
        {1e-5, "1e-05"},
        {-2.5, "-2.5"},
        {999999.5, "1e+06"},
    };
    for (const auto& [value, text] : rows)
        EXPECT_EQ(labelFor("level", value), QStringLiteral("Set Point level ") + text) << text;
}

TEST_F(AnalogWriteTest, ShowsThePointsNameAsItStandsEvenWhenItLooksLikeAPlaceholder) {
    EXPECT_EQ(labelFor("level 50 %2", 7), QStringLiteral("Set Point level 50 %2 7"));
    EXPECT_EQ(labelFor("%1", 7), QStringLiteral("Set Point %1 7"));
}

TEST_F(AnalogWriteTest, DoesNotTranslateItsLabel) {
    const MarkingTranslator ofBase("CRtu");
    const MarkingTranslator ofOwn("SBusRtu");
    EXPECT_EQ(labelFor("level", 7), QStringLiteral("Set Point level 7"));
}

// --- The value of integer registers and counters

TEST_F(AnalogWriteTest, CutsTheValueOfARegisterOrCounterTowardsZero) {
    const std::pair<double, const char*> rows[] = {
        {0, "00 00 00 00"},  {12.7, "00 00 00 0C"},  {0.99, "00 00 00 00"},      {-0.99, "00 00 00 00"},
        {-1, "FF FF FF FF"}, {-12.7, "FF FF FF F4"}, {305419896, "12 34 56 78"}, {-305419896, "ED CB A9 88"},
    };
    for (const char* media : {"R", "C"}) {
        setPoint(media);
        for (const auto& [value, bytes] : rows)
            EXPECT_EQ(bytesFor(value), QByteArray(bytes)) << media << ' ' << value;
    }
}

TEST_F(AnalogWriteTest, WritesTheLimitsOfARegister) {
    setPoint("R");
    EXPECT_EQ(bytesFor(2'147'483'647.0), "7F FF FF FF");
    EXPECT_EQ(bytesFor(2'147'483'647.9), "7F FF FF FF");
    EXPECT_EQ(bytesFor(-2'147'483'648.0), "80 00 00 00");
    EXPECT_EQ(bytesFor(-2'147'483'648.9), "80 00 00 00");
}

TEST_F(AnalogWriteTest, WritesTheLowestNumberForWhatARegisterCannotHold) {
    for (const char* media : {"R", "C"}) {
        setPoint(media);
        for (double value : {2'147'483'648.0, 4'294'967'295.0, 4'294'967'297.0, -2'147'483'649.0, 1e15, -1e15,
                             1e300, -1e300, infinity, -infinity, notANumber})
            EXPECT_EQ(bytesFor(value), "80 00 00 00") << media << ' ' << value;
    }
}

TEST_F(AnalogWriteTest, TakesEveryDataTypeButFourteenForAnInteger) {
    for (unsigned type : {1u, 13u, 15u, 140u, 4'294'967'295u}) {
        setPoint("R", "200", static_cast<PointDataType>(type));
        EXPECT_EQ(bytesFor(12.7), "00 00 00 0C") << type;
    }
}

TEST_F(AnalogWriteTest, TakesACounterForAnIntegerWhateverItsDataType) {
    setPoint("C", "200", PointDataType::Float);
    EXPECT_EQ(telegramOf(12.7), writeItem(10, 200, 1, hex("00 00 00 0C")));
    EXPECT_EQ(bytesFor(3e9), "80 00 00 00");
}

// --- The value of timers

TEST_F(AnalogWriteTest, WritesTheLowThirtyTwoBitsOfATimersValueCutTowardsZero) {
    const std::pair<double, const char*> rows[] = {
        {0, "00 00 00 00"},
        {12.7, "00 00 00 0C"},
        {-0.99, "00 00 00 00"},
        {-1, "FF FF FF FF"},
        {-12.7, "FF FF FF F4"},
        {2'147'483'648.0, "80 00 00 00"},
        {3e9, "B2 D0 5E 00"},
        {4'294'967'295.9, "FF FF FF FF"},
        {4'294'967'296.0, "00 00 00 00"},
        {4'294'967'297.9, "00 00 00 01"},
        {-4'294'967'297.0, "FF FF FF FF"},
        {1'311'768'467'463'790'080.0, "9A BC DE 00"}, // 0x123456789ABCDE00
    };
    setPoint("T");
    for (const auto& [value, bytes] : rows)
        EXPECT_EQ(bytesFor(value), QByteArray(bytes)) << value;
}

TEST_F(AnalogWriteTest, TakesATimerForATimerWhateverItsDataType) {
    setPoint("T", "200", PointDataType::Float);
    EXPECT_EQ(telegramOf(-1.0), writeItem(15, 200, 1, hex("FF FF FF FF")));
    EXPECT_EQ(bytesFor(1.0), "00 00 00 01");
}

// --- The value of floating-point registers

TEST_F(AnalogWriteTest, WritesTheControllersFloatingPointWord) {
    setPoint("R", "200", PointDataType::Float);
    EXPECT_EQ(telegramOf(1.0), writeItem(14, 200, 1, hex("80 00 00 41")));
    EXPECT_EQ(bytesFor(-1.0), "80 00 00 C1");
    EXPECT_EQ(bytesFor(100.0), "C8 00 00 47");
    EXPECT_EQ(bytesFor(0.1), "CC CC CD 3D");
}

TEST_F(AnalogWriteTest, WritesTheExponentAloneForWhatTheWordCannotHold) {
    setPoint("R", "200", PointDataType::Float);
    EXPECT_EQ(bytesFor(0.0), "FF FF FF C2");
    EXPECT_EQ(bytesFor(infinity), "00 00 00 C1");
    EXPECT_EQ(bytesFor(-infinity), "00 00 00 C1");
    EXPECT_EQ(bytesFor(notANumber), "00 00 00 C1");
    EXPECT_EQ(bytesFor(1e300), "00 00 00 C1");
}

// --- Refusals

TEST_F(AnalogWriteTest, NeedsAConnectedChannel) {
    setPoint("R");
    expectNeedsAConnectedChannel(writing(1));
}

TEST_F(AnalogWriteTest, LooksAtTheChannelBeforeAnythingElse) {
    expectNeedsAConnectedChannel(writing(1)); // no such point
    setPoint("F");
    expectNeedsAConnectedChannel(writing(1));
}

TEST_F(AnalogWriteTest, GoesByTheChannelsConnectionAndNotTheRtus) {
    setPoint("R");
    rtu->SetConnect(false, false);
    EXPECT_EQ(write(1), accepted);
    EXPECT_EQ(sendPending().size(), 1);
}

TEST_F(AnalogWriteTest, RefusesAnUnknownPointWithoutAWord) {
    expectRefused(writing(1), pointNotFound, {});
    addStatus(pointId, "R1");
    expectRefused(writing(1), pointNotFound, {});
}

TEST_F(AnalogWriteTest, RefusesAnAddressOfAnotherMediaWithoutAWord) {
    for (const char* address :
         {"", "F", "O", "I", "P", "r", "t", "c", "X12.3", " R", "1R", "FR", "\xC5\x94"}) {
        setPoint(address);
        expectRefused(writing(1), unsupportedAddress, {});
    }
}

// --- Reply and path

TEST_F(AnalogWriteTest, TakesItsReplyOverOnce) {
    setPoint("R");
    expectTakesItsReplyOverOnce(writing(1));
}

TEST_F(AnalogWriteTest, CompletesItsReplyWithTheOutcome) {
    setPoint("R");
    expectCompletesItsReplyWithTheOutcome(writing(1));
}

TEST_F(AnalogWriteTest, RunsWithoutAReply) {
    setPoint("R");
    expectRunsWithoutAReply(writing(1));
}

TEST_F(AnalogWriteTest, GoesAheadOfWaitingPolls) {
    setPoint("R");
    expectGoesAheadOfWaitingPolls(writing(1));
}

TEST_F(AnalogWriteTest, IsAcceptedAndReportedWhenThereIsNoLink) {
    setPoint("R");
    expectReportsAMissingLink(writing(1));
}

TEST_F(AnalogWriteTest, TheNewestOfSeveralValuesGoesFirst) {
    setPoint("R");
    for (double value : {1.0, 2.0, 3.0})
        EXPECT_EQ(write(value), accepted);
    EXPECT_EQ(namesSent(), (QStringList{"Set Point level 3", "Set Point level 2", "Set Point level 1"}));
}

TEST_F(AnalogWriteTest, DisplacesAWaitingOneOfTheSameNameAndValue) {
    setPoint("R", "200");
    addAnalog(31, "R", "201")->name = QStringLiteral("level");
    EXPECT_EQ(write(1), accepted);
    EXPECT_EQ(rtu->analogWrite(31, 1, nullptr), accepted);
    EXPECT_EQ(sendOnlyRequest().items, (QList{writeItem(14, 201, 1, hex("00 00 00 01"))}));
}

TEST_F(AnalogWriteTest, ReleasesNothingLater) {
    setPoint("R");
    EXPECT_EQ(write(1), accepted);
    EXPECT_EQ(sendPending().size(), 1);
    EXPECT_TRUE(sendAfter(3'600'000).isEmpty());
}

// --- Threads

TEST_F(AnalogWriteTest, ValuesGivenOnManyThreadsAllArrive) {
    constexpr int threadCount = 4;
    constexpr int valuesEach = 100;
    constexpr int valuesInAll = threadCount * valuesEach;
    setPoint("R");
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread)
        threads.emplace_back([this, thread] {
            for (int i = 0; i < valuesEach; ++i)
                EXPECT_EQ(write(thread * valuesEach + i), accepted);
        });
    for (std::thread& thread : threads)
        thread.join();
    std::set<QByteArray> arrived;
    for (int turn = 0; turn < valuesInAll; ++turn)
        protocol->processNextRequest();
    EXPECT_EQ(protocol->exchanges.size(), valuesInAll);
    for (const SBusRequestItem& item : protocol->items())
        arrived.insert(item.data);
    EXPECT_EQ(arrived.size(), std::size_t{valuesInAll});
}
