#include "ObservedLine.h"
#include "runtime/FailureCollapser.h"
#include "runtime/FailureText.h"
#include "runtime/LineMessages.h"
#include "values/TimeText.h"

#include <QDateTime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::FailureCollapser;
using host::failureReason;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using namespace std::chrono_literals;
using namespace telegrams;

namespace {

const FailureCollapser::Time start{};
const FailureCollapser::Source rtu{1, 2};
constexpr int silence = 1; // kinds
constexpr int refused = 2;

std::string reasonBehind(const host::Site& site, const QByteArray& sent, const QByteArray& received) {
    ObservedLine line(site);
    line.send(sent);
    if (!received.isEmpty())
        line.receive(received);
    line.reportFailure();
    return failureReason(line.ended.at(0));
}

} // namespace

TEST(FailureText, NamesChannelAndRtu) {
    const host::Site site = smallSite();
    const host::Channel& channel = site.channels[0];
    EXPECT_EQ(nameOf(channel, &channel.rtus[0]),
              "channel 4 \"waterworks\", RTU 7 \"pump-house\" (station 5)");
    EXPECT_EQ(nameOf(channel, nullptr), "channel 4 \"waterworks\"");
}

TEST(FailureText, TellsWhatToCheckWhenNobodyAnswers) {
    EXPECT_EQ(reasonBehind(smallSite(), readTwoRegisters, {}),
              "no answer within 200 ms; check that the controller is on and has station number 5, and that "
              "udp://127.0.0.1:9 is its address");
    EXPECT_THAT(reasonBehind(serialSite(), switchOn, {}),
                AllOf(HasSubstr("no answer within 200 ms"), HasSubstr("the cable at /dev/x"),
                      HasSubstr("9600 baud and transmit type data")));
}

TEST(FailureText, NamesTheBaudRateWhenTheAnswerCannotComeInTime) {
    host::Site site = serialSite();
    site.channels[0].primary = host::SerialEnd{"/dev/x", 4800};
    site.channels[0].rtus[0].timeout = 1s;
    const QByteArray readRegisters = withChecksum(hex("B5 00 05 06 7E 00 00"));
    const std::string reason = "request and answer take 1085 ms at 4800 baud, and the time-out is 1000 ms; "
                               "raise the baud rate, raise the time-out to 2200ms";
    // Besides, the station may not be there.
    EXPECT_THAT(reasonBehind(site, readRegisters, {}),
                AllOf(HasSubstr("no answer within 1000 ms: " + reason), HasSubstr("station number 5")));
    EXPECT_THAT(reasonBehind(site, readRegisters, hex("B5 01 00 00")),
                AllOf(HasSubstr("an answer arrived damaged"), HasSubstr(reason), Not(HasSubstr("check"))));
    site.channels[0].rtus[0].timeout = 1'086ms;
    EXPECT_THAT(reasonBehind(site, readRegisters, {}), HasSubstr("no answer within 1086 ms; check that"));
}

TEST(FailureText, NamesTheBaudRateWhenAWriteCannotBeAcknowledgedInTime) {
    host::Site site = serialSite();
    site.channels[0].primary = host::SerialEnd{"/dev/x", 600};
    // 11 bytes out and 6 back, 10 bits each.
    site.channels[0].rtus[0].timeout = 283ms;
    EXPECT_THAT(reasonBehind(site, switchOn, {}), HasSubstr("request and answer take 283 ms at 600 baud"));
    site.channels[0].rtus[0].timeout = 284ms;
    EXPECT_THAT(reasonBehind(site, switchOn, {}), HasSubstr("no answer within 284 ms; check that"));
}

TEST(FailureText, NamesTheBaudRateOfTheEndInUse) {
    host::Site site = serialSite();
    site.channels[0].secondary = host::SerialEnd{"/dev/y", 300};
    ObservedLine line(site);
    const QByteArray read = withChecksum(hex("B5 00 05 06 00 00 00"));
    line.wire().secondaryEnd().linkOpened(0);
    line.wire().secondaryEnd().telegramSent(read.constData(), read.size(), LinkObserver::Clock::now());
    line.reportFailure();
    EXPECT_THAT(failureReason(line.ended.at(0)),
                HasSubstr("at 300 baud a byte takes 33.3 ms, and the driver takes a silence of 20 ms for the "
                          "end of an answer; raise the baud rate"));
}

TEST(FailureText, NamesTheEndInUseWhenNobodyAnswers) {
    host::Site site = smallSite();
    site.channels[0].secondary = host::UdpEnd{"127.0.0.2", 9};
    ObservedLine line(site);
    line.wire().secondaryEnd().linkOpened(0);
    LinkObserver& secondary = line.wire().secondaryEnd();
    secondary.telegramSent(readTwoRegisters.constData(), readTwoRegisters.size(), LinkObserver::Clock::now());
    line.reportFailure();
    EXPECT_THAT(failureReason(line.ended.at(0)), HasSubstr("udp://127.0.0.2:9"));
    line.open();
    line.send(readTwoRegisters);
    line.reportFailure();
    EXPECT_THAT(failureReason(line.ended.at(1)), HasSubstr("udp://127.0.0.1:9"));
}

TEST(FailureText, TellsRefusalsFromDamageAndFromAnswersToOthers) {
    EXPECT_EQ(reasonBehind(smallSite(), readTwoRegisters, refusal),
              "the controller refused a request (acknowledge code 1); check that every element of its points "
              "exists in it");
    EXPECT_THAT(
        reasonBehind(serialSite(host::TransmitType::Break), withChecksum(hex("05 06 01 00 64")), hex("15")),
        HasSubstr("refused a request (negative acknowledge)"));
    EXPECT_THAT(reasonBehind(smallSite(), readTwoRegisters, damagedAnswer),
                AllOf(HasSubstr("damaged"), HasSubstr("check the network")));
    EXPECT_THAT(reasonBehind(smallSite(), readTwoRegisters, lateAnswer),
                AllOf(HasSubstr("not the one to the request"), HasSubstr("later than the time-out")));
}

TEST(FailureText, TellsALineThatFailedFromSilence) {
    const host::Site site = serialSite();
    ObservedLine line(site);
    line.send(switchOn);
    line.wire().primaryEnd().receiveFailed();
    line.reportFailure();
    EXPECT_THAT(failureReason(line.ended.at(0)),
                HasSubstr("check that device and cable are still plugged in"));
}

// Who reads the messages need not be the one who gave the command.
TEST(FailureText, NamesTheCommandThatCouldNotBeSent) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    line.failToSend(writeLevel);
    line.reportFailure();
    EXPECT_EQ(failureReason(line.ended.at(0)),
              "a command was not sent: write R101: 12 (LEVEL); the line failed; check the network of this "
              "computer");
    line.failToSend(readTwoRegisters);
    line.reportFailure();
    EXPECT_EQ(failureReason(line.ended.at(1)), "the line failed; check the network of this computer");
}

TEST(FailureText, NamesTheCommandToAnElementWithoutAPointThatCouldNotBeSent) {
    const host::Site site = serialSite();
    ObservedLine line(site);
    line.failToSend(switchOn);
    line.reportFailure();
    EXPECT_EQ(
        failureReason(line.ended.at(0)),
        "a command was not sent: switch O200 on; the line failed; check that device and cable are still "
        "plugged in");
}

TEST(FailureText, NamesTheElementsThatAControllerDoesNotHave) {
    host::RefusalNews news;
    news.absent = {{'R', 205}, {'F', 3}, {'R', 206}, {'R', 17}};
    EXPECT_THAT(refusalNewsText(news), HasSubstr("the controller does not have F3, R17, R205..206: "));
    news.absent.clear();
    for (unsigned number = 0; number < 100; number += 2)
        news.absent.push_back({'R', number});
    EXPECT_THAT(refusalNewsText(news), HasSubstr("R36, R38 and more: "));
}

TEST(FailureText, TellsWhichLimitToSet) {
    host::RefusalNews news;
    news.tooLong = {{'R', 0, 32}};
    EXPECT_THAT(refusalNewsText(news), HasSubstr("refuses 32 elements in one telegram (R0..31)"));
    EXPECT_THAT(refusalNewsText(news), HasSubstr("max_read_words"));
    news.tooLong = {{'F', 0, 32}};
    EXPECT_THAT(refusalNewsText(news), HasSubstr("max_read_bits"));
}

TEST(FailureCollapser, TellsTheFirstOfAKindAtOnceAndTheOthersOnceAMinute) {
    FailureCollapser collapser;
    EXPECT_EQ(collapser.failed(rtu, silence, "no answer", start), "no answer");
    for (int second = 1; second < 60; ++second)
        EXPECT_FALSE(collapser.failed(rtu, silence, "no answer", start + std::chrono::seconds(second)));
    EXPECT_EQ(collapser.failed(rtu, silence, "no answer", start + 60s),
              "no answer (59 more since this was last told)");
    EXPECT_FALSE(collapser.failed(rtu, silence, "no answer", start + 61s));
}

TEST(FailureCollapser, KeepsKindsAndSourcesApart) {
    FailureCollapser collapser;
    EXPECT_TRUE(collapser.failed(rtu, silence, "no answer", start));
    EXPECT_TRUE(collapser.failed(rtu, refused, "refused", start));
    EXPECT_TRUE(collapser.failed({1, 3}, silence, "no answer", start));
}

TEST(FailureCollapser, TakesFailuresOfAKindForOneWhateverTheirTexts) {
    FailureCollapser collapser;
    EXPECT_TRUE(collapser.failed(rtu, refused, "refused, code 1", start));
    EXPECT_FALSE(collapser.failed(rtu, refused, "refused, code 2", start + 1s));
}

TEST(FailureCollapser, TellsTheEndOfAFailureOnce) {
    FailureCollapser collapser;
    EXPECT_FALSE(collapser.succeeded(rtu, "RTU 2"));
    EXPECT_FALSE(collapser.isFailing(rtu));
    EXPECT_TRUE(collapser.failed(rtu, silence, "no answer", start));
    EXPECT_TRUE(collapser.isFailing(rtu));
    EXPECT_EQ(collapser.succeeded(rtu, "RTU 2"), "RTU 2: answers again");
    EXPECT_FALSE(collapser.succeeded(rtu, "RTU 2"));
    // A failure that is not told has no end to be told.
    EXPECT_FALSE(collapser.failed(rtu, silence, "no answer", start + 5s));
    EXPECT_FALSE(collapser.succeeded(rtu, "RTU 2"));
}

TEST(LineMessages, TellsFailuresAndTheirEndButNotSuccess) {
    const host::Site site = smallSite();
    host::Messages messages;
    host::LineMessages teller(messages);
    ObservedLine line(site);
    line.reportAnswer();
    line.send(readTwoRegisters);
    line.reportFailure();
    line.send(readTwoRegisters);
    line.reportFailure();
    line.reportAnswer();
    line.reportAnswer();
    for (const host::RequestEnd& end : line.ended)
        teller.requestEnded(end);
    EXPECT_THAT(
        messages.take(),
        ElementsAre(HasSubstr("channel 4 \"waterworks\", RTU 7 \"pump-house\" (station 5): no answer"),
                    HasSubstr("answers again")));
}

// A poll that met the dead line before must not hide it.
TEST(LineMessages, TellsACommandThatCouldNotBeSentBesideAReadThatCouldNot) {
    const host::Site site = smallSite();
    host::Messages messages;
    host::LineMessages teller(messages);
    ObservedLine line(site);
    line.failToSend(readTwoRegisters);
    line.reportFailure();
    line.failToSend(writeLevel);
    line.reportFailure();
    for (const host::RequestEnd& end : line.ended)
        teller.requestEnded(end);
    EXPECT_THAT(messages.take(),
                ElementsAre(HasSubstr(": the line failed"), HasSubstr("a command was not sent")));
}

// Each answer's sequence number is another one.
TEST(LineMessages, TellsLateAnswersOnce) {
    const host::Site site = smallSite();
    host::Messages messages;
    host::LineMessages teller(messages);
    ObservedLine line(site);
    for (quint16 sequence = 100; sequence < 200; ++sequence) {
        line.send(readTwoRegisters);
        line.receive(ethernetTelegram(sequence, 1, hex("00 00 00 0C 00 00 00 0D")));
        line.reportFailure();
        teller.requestEnded(line.ended.back());
    }
    EXPECT_EQ(messages.take().size(), 1U);
}

// A controller that varies its acknowledge code from poll to poll.
TEST(LineMessages, TellsRefusalsOfManyCodesOnce) {
    const host::Site site = smallSite();
    host::Messages messages;
    host::LineMessages teller(messages);
    ObservedLine line(site);
    for (quint16 code = 2; code < 2'000; ++code) {
        QByteArray acknowledge;
        acknowledge += static_cast<char>(code >> 8);
        acknowledge += static_cast<char>(code & 0xFF);
        line.send(readTwoRegisters);
        line.receive(ethernetTelegram(7, 2, acknowledge));
        line.reportFailure();
        ASSERT_EQ(line.ended.back().kind, host::RequestEnd::Kind::Refused) << code;
        teller.requestEnded(line.ended.back());
    }
    EXPECT_EQ(messages.take().size(), 1U);
}

TEST(FailureCollapser, KeepsOneEntryAKindHoweverManyFailuresThereAre) {
    FailureCollapser collapser;
    for (int i = 0; i < 10'000; ++i)
        collapser.failed(rtu, refused, "code " + std::to_string(i), start + i * 100s);
    EXPECT_EQ(collapser.entries(), 1U);
}

TEST(LineMessages, TellsEachReasonForWhichALineCannotBeOpened) {
    const host::Site site = serialSite();
    host::Messages messages;
    host::LineMessages teller(messages);
    constexpr int noSuchFile = 2; // on every system
    constexpr int otherError = 5;
    for (const int error : {noSuchFile, otherError})
        for (int i = 0; i < 2; ++i)
            teller.lineOpened(site.channels[0], false, error);
    EXPECT_THAT(messages.take(),
                ElementsAre(HasSubstr("there is no device"), Not(HasSubstr("there is no device"))));
}

TEST(LineMessages, TellsALineThatCannotBeOpened) {
    const host::Site site = smallSite();
    host::Messages messages;
    host::LineMessages teller(messages);
    teller.lineOpened(site.channels[0], false, 0);
    EXPECT_THAT(messages.take(), IsEmpty());
    teller.lineOpened(site.channels[0], false, 5);
    teller.lineOpened(site.channels[0], false, 5);
    EXPECT_THAT(messages.take(), ElementsAre(AllOf(HasSubstr("channel 4 \"waterworks\": cannot open"),
                                                   Not(HasSubstr("RTU")))));
    teller.lineOpened(site.channels[0], false, 0);
    EXPECT_THAT(messages.take(), ElementsAre(HasSubstr("answers again")));
}

// A redundant line, whose ends the test opens as the driver does.
class EndInUse : public testing::Test {
protected:
    EndInUse() { site.channels[0].secondary = host::UdpEnd{"127.0.0.2", 9}; }

    void open(bool onSecondary) { teller.lineOpened(site.channels[0], onSecondary, 0); }
    void answer(bool onSecondary) {
        host::RequestEnd end;
        end.channel = &site.channels[0];
        end.rtu = &site.channels[0].rtus[0];
        end.onSecondary = onSecondary;
        teller.requestEnded(end);
    }

    host::Site site = smallSite();
    host::Messages messages;
    host::LineMessages teller{messages};
    const std::string toSecondary =
        "channel 4 \"waterworks\": changed over to its secondary end, udp://127.0.0.2:9";
    const std::string toPrimary =
        "channel 4 \"waterworks\": changed over to its primary end, udp://127.0.0.1:9";
};

TEST_F(EndInUse, IsToldWhenItChanges) {
    open(false);
    answer(false);
    EXPECT_THAT(messages.take(), IsEmpty());
    open(true);
    open(true); // after a lost answer
    answer(true);
    EXPECT_THAT(messages.take(), ElementsAre(toSecondary));
    open(false);
    EXPECT_THAT(messages.take(), ElementsAre(toPrimary));
}

TEST_F(EndInUse, IsToldOnceWhenNoEndAnswers) {
    for (int i = 0; i < 10; ++i) {
        open(true);
        open(false);
    }
    EXPECT_THAT(messages.take(), ElementsAre(toSecondary, toPrimary));
}

TEST_F(EndInUse, IsToldWheneverItAnswers) {
    for (int i = 0; i < 3; ++i)
        open(i % 2 == 0);
    EXPECT_THAT(messages.take(), ElementsAre(toSecondary, toPrimary));
    answer(true);
    EXPECT_THAT(messages.take(), ElementsAre(HasSubstr("secondary end")));
}

TEST(Messages, CarryTheTimeAtWhichTheyWereTold) {
    host::Messages messages;
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    messages.tell("x");
    const std::vector<host::Message> taken = messages.takeWithTimes();
    ASSERT_EQ(taken.size(), 1U);
    EXPECT_GE(taken[0].timeMs, before);
    EXPECT_LE(taken[0].timeMs, QDateTime::currentMSecsSinceEpoch());
    EXPECT_EQ(messageLine(taken[0]), host::localTimeText(taken[0].timeMs) + "  x");
}

TEST(Messages, AreKeptAtOnceByWhoRecordsThem) {
    host::Messages messages;
    std::vector<std::string> kept;
    messages.setKeeper([&kept](const host::Message& message) { kept.push_back(message.text); });
    messages.tell("a");
    EXPECT_THAT(kept, ElementsAre("a"));
    messages.setKeeper(nullptr);
    messages.tell("b");
    EXPECT_THAT(kept, ElementsAre("a"));
    EXPECT_THAT(messages.take(), ElementsAre("a", "b"));
}

TEST(Messages, TellsHowManyWereLost) {
    host::Messages messages;
    for (int i = 0; i < 20'003; ++i)
        messages.tell("x");
    const std::vector<std::string> taken = messages.take();
    ASSERT_EQ(taken.size(), 20'001U);
    EXPECT_EQ(taken.back(), "3 messages were lost: more came than was read");
    EXPECT_THAT(messages.take(), IsEmpty());
}
