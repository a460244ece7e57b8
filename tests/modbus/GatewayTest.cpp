#include "HoldingTaker.h"
#include "ModbusSite.h"
#include "PduText.h"
#include "services/modbus/ModbusGateway.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Halvex::DriverErrorResult;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const char* const switchRun = "05 00 01 FF 00";
const char* const setLevel = "10 00 02 00 02 04 FF FF FF FE";

host::CommandEnd ended(DriverErrorResult result, bool wasRefused = false) {
    host::CommandEnd end;
    end.result = result;
    end.wasRefused = wasRefused;
    return end;
}

// On the test's thread alone: what would come back to the server's thread is called at once.
class ModbusGatewayTest : public testing::Test {
protected:
    ModbusGatewayTest() { settings.takesWrites = true; }

    void ask(const char* request) {
        gateway->carryOut(1, bytes(request),
                          [this](const host::ModbusPdu& answer) { answers.push_back(text(answer)); });
    }

    const host::Site site = modbusSite();
    host::ModbusSettings settings;
    host::Findings findings;
    const host::ModbusMap map{site, settings, findings};
    host::ValueStore store{site};
    HoldingTaker taker;
    host::ModbusCounts counts;
    std::unique_ptr<host::ModbusGateway> gateway =
        std::make_unique<host::ModbusGateway>(host::ModbusGateway::Site{map, settings, store, taker}, counts,
                                              [](const std::function<void()>& function) { function(); });
    std::vector<std::string> answers;
};

} // namespace

TEST_F(ModbusGatewayTest, AnswersReadsAtOnce) {
    publishAll(store);
    ask("03 00 02 00 02");
    ask("03 00 06 00 02");
    ask("07");
    EXPECT_THAT(answers, ElementsAre("03 04 FF FF FF FE", "83 02", "87 01"));
    EXPECT_EQ(counts.requests, 3U);
    EXPECT_EQ(counts.exceptions, 2U);
    EXPECT_EQ(counts.notGood, 0U);
}

TEST_F(ModbusGatewayTest, CountsReadsOfValuesThatAreNotGood) {
    ask("03 00 02 00 02");
    EXPECT_THAT(answers, ElementsAre("83 0B"));
    EXPECT_EQ(counts.notGood, 1U);
}

TEST_F(ModbusGatewayTest, AnswersAWriteWhenItsCommandHasEnded) {
    taker.hold();
    ask(switchRun);
    EXPECT_THAT(taker.commands(), ElementsAre("4/7 2 on"));
    EXPECT_THAT(answers, IsEmpty());
    taker.end(ended(DriverErrorResult::Success));
    EXPECT_THAT(answers, ElementsAre("05 00 01 FF 00"));
    ask(setLevel);
    taker.end(ended(DriverErrorResult::Success));
    EXPECT_THAT(answers, ElementsAre("05 00 01 FF 00", "10 00 02 00 02"));
    EXPECT_EQ(counts.writes, 2U);
}

TEST_F(ModbusGatewayTest, TellsHowACommandFailed) {
    taker.hold();
    for (const host::CommandEnd& end :
         {ended(DriverErrorResult::Success, true), ended(DriverErrorResult::TimeOut),
          ended(DriverErrorResult::ChannelError)}) {
        ask(setLevel);
        taker.end(end);
    }
    EXPECT_THAT(answers, ElementsAre("90 04", "90 0B", "90 0A"));
}

TEST_F(ModbusGatewayTest, TellsTheFirstFailureOnceAllCommandsHaveEnded) {
    host::Site twoCoils = modbusSite();
    twoCoils.channels[0].rtus[0].points[0].address = {'F', 3};
    const host::ModbusMap own(twoCoils, settings, findings);
    host::ModbusGateway two({own, settings, store, taker}, counts,
                            [](const std::function<void()>& function) { function(); });
    taker.hold();
    two.carryOut(1, bytes("0F 00 00 00 02 01 03"),
                 [this](const host::ModbusPdu& answer) { answers.push_back(text(answer)); });
    EXPECT_THAT(taker.commands(), ElementsAre("4/7 1 on", "4/7 2 on"));
    taker.end(ended(DriverErrorResult::TimeOut));
    EXPECT_THAT(answers, IsEmpty());
    taker.end(ended(DriverErrorResult::ChannelError));
    EXPECT_THAT(answers, ElementsAre("8F 0B"));
}

TEST_F(ModbusGatewayTest, WritesNothingWhereItIsReadOnly) {
    settings.takesWrites = false;
    ask(switchRun);
    ask(setLevel);
    ask("06 00 02 00 07");
    ask("0F 00 01 00 01 01 01");
    EXPECT_THAT(answers, ElementsAre("85 01", "90 01", "86 01", "8F 01"));
    EXPECT_THAT(taker.commands(), IsEmpty());
}

TEST_F(ModbusGatewayTest, IsBusyWhileItsCommandsAreOpen) {
    taker.hold();
    for (std::size_t i = 0; i < host::ModbusGateway::mostOpenCommands; ++i)
        ask(switchRun);
    EXPECT_THAT(answers, IsEmpty());
    ask(setLevel);
    EXPECT_THAT(answers, ElementsAre("90 06"));
    taker.end(ended(DriverErrorResult::Success));
    ask(setLevel);
    EXPECT_EQ(taker.commands().back(), "4/7 4=-2");
}

TEST_F(ModbusGatewayTest, IsBusyWhenNoMoreCommandsAreTaken) {
    taker.takeAtMost(0);
    ask(switchRun);
    EXPECT_THAT(answers, ElementsAre("85 06"));
    taker.takeAtMost(1);
    ask(switchRun);
    EXPECT_THAT(answers, ElementsAre("85 06", "05 00 01 FF 00"));
}

TEST_F(ModbusGatewayTest, MayBeGoneWhenACommandEnds) {
    taker.hold();
    ask(switchRun);
    gateway.reset();
    taker.end(ended(DriverErrorResult::ChannelError));
    EXPECT_THAT(answers, IsEmpty());
}
