#include "ObservedLine.h"
#include "runtime/FailureText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

using Kind = host::RequestEnd::Kind;
using namespace telegrams;

namespace {

constexpr int channelId = ObservedLine::channelId;
constexpr int rtuId = ObservedLine::rtuId;

// How a request with one telegram ends that the driver reports as failed.
Kind failureBehind(const host::Site& site, const QByteArray& sent, const QByteArray& received) {
    ObservedLine line(site);
    line.send(sent);
    if (!received.isEmpty())
        line.receive(received);
    line.reportFailure();
    return line.ended.size() == 1 ? line.ended[0].kind : Kind::Answered;
}

} // namespace

TEST(RequestEnds, PassesOnWhatTheDriverTells) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    PointUpdate update;
    update.number = 3;
    update.value = 12;
    line.ends.publishPoints(channelId, rtuId, {update});
    line.ends.publishRtuStatus(channelId, rtuId, line.status);
    line.ends.publishChannelStatus(channelId, {});
    ASSERT_TRUE(line.core.point(channelId, rtuId, 3));
    EXPECT_EQ(line.core.point(channelId, rtuId, 3)->value, 12);
    EXPECT_EQ(line.core.rtuStatusCount(), 1);
    EXPECT_EQ(line.core.channelStatusCount(), 1);
}

TEST(RequestEnds, TellsOnlyOfStatusesThatCountARequest) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    line.ends.publishRtuStatus(channelId, rtuId, line.status);
    EXPECT_TRUE(line.ended.empty()) << "a change of connection";
    line.send(readTwoRegisters);
    line.receive(twoRegisters);
    line.reportAnswer();
    line.ends.publishRtuStatus(channelId, rtuId, line.status);
    ASSERT_EQ(line.ended.size(), 1U);
    EXPECT_EQ(line.ended[0].kind, Kind::Answered);
    EXPECT_EQ(line.ended[0].channel, &site.channels[0]);
    EXPECT_EQ(line.ended[0].rtu, &site.channels[0].rtus[0]);
    EXPECT_FALSE(line.ended[0].exchange) << "of a good one none is made";
}

TEST(RequestEnds, JudgesAFailureByWhatHasPassedTheLine) {
    const host::Site site = smallSite();
    EXPECT_EQ(failureBehind(site, readTwoRegisters, {}), Kind::NoAnswer);
    EXPECT_EQ(failureBehind(site, readTwoRegisters, refusal), Kind::Refused);
    EXPECT_EQ(failureBehind(site, readTwoRegisters, lateAnswer), Kind::BadAnswer);
    EXPECT_EQ(failureBehind(site, readTwoRegisters, damagedAnswer), Kind::BadAnswer);
    EXPECT_EQ(failureBehind(site, readTwoRegisters, twoRegisters), Kind::BadAnswer) << "the driver says so";
}

TEST(RequestEnds, GivesTheLastExchangeOfAFailure) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    line.send(readTwoRegisters);
    line.receive(twoRegisters);
    line.send(readTwoRegisters);
    line.receive(refusal);
    line.reportFailure();
    ASSERT_TRUE(line.ended.at(0).exchange);
    EXPECT_EQ(line.ended[0].exchange->answer, host::Answer::Refused);
}

// The driver takes such a read for an answer that was cut off.
TEST(RequestEnds, TellsSilenceFromSilenceBehindAnAnswer) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    line.send(readTwoRegisters);
    line.receive(twoRegisters);
    line.send(readTwoRegisters);
    line.reportFailure();
    line.send(readTwoRegisters);
    line.reportFailure();
    ASSERT_EQ(line.ended.size(), 2U);
    EXPECT_EQ(line.ended[0].kind, Kind::NoAnswer);
    EXPECT_TRUE(line.ended[0].wasHeard);
    EXPECT_EQ(line.ended[1].kind, Kind::NoAnswer);
    EXPECT_FALSE(line.ended[1].wasHeard) << "what came before belongs to the request before";
}

TEST(RequestEnds, KnowsARefusedReadOnASerialLine) {
    EXPECT_EQ(failureBehind(serialSite(), withChecksum(hex("B5 00 05 06 01 00 64")), negative),
              Kind::Refused);
    EXPECT_EQ(
        failureBehind(serialSite(host::TransmitType::Break), withChecksum(hex("05 06 01 00 64")), hex("15")),
        Kind::Refused);
}

// In Data Mode the driver looks at the start and the checksum of an acknowledge alone.
TEST(RequestEnds, KnowsARefusedWriteThatTheDriverTakesForDone) {
    const host::Site site = serialSite();
    ObservedLine line(site);
    EXPECT_FALSE(line.ends.wasLastRequestRefused(channelId, rtuId));
    line.send(switchOn);
    line.receive(negative);
    line.reportAnswer();
    EXPECT_EQ(line.ended.at(0).kind, Kind::Refused);
    EXPECT_TRUE(line.ended[0].exchange);
    EXPECT_TRUE(line.ends.wasLastRequestRefused(channelId, rtuId));
    EXPECT_FALSE(line.ends.wasLastRequestRefused(channelId, 8));
    EXPECT_FALSE(line.ends.wasLastRequestRefused(3, rtuId));
    line.send(switchOn);
    line.receive(positive);
    line.reportAnswer();
    EXPECT_EQ(line.ended.at(1).kind, Kind::Answered);
    EXPECT_FALSE(line.ends.wasLastRequestRefused(channelId, rtuId));
}

// A pulse's release writes twice. What is told of the refusal is the exchange in which it came.
TEST(RequestEnds, KnowsARefusalOfAnyWriteOfARequest) {
    const host::Site site = serialSite();
    ObservedLine line(site);
    line.send(switchOn);
    line.receive(negative);
    line.send(switchOn);
    line.receive(positive);
    line.reportAnswer();
    ASSERT_EQ(line.ended.at(0).kind, Kind::Refused);
    ASSERT_TRUE(line.ended[0].exchange);
    EXPECT_EQ(line.ended[0].exchange->answer, host::Answer::Refused);
    EXPECT_EQ(refusalText(line.ended[0]), "acknowledge code 1");
}

TEST(RequestEnds, KnowsARefusedWriteBehindWhichTheControllerFellSilent) {
    const host::Site site = serialSite();
    ObservedLine line(site);
    line.send(switchOn);
    line.receive(negative);
    line.send(switchOn);
    line.reportFailure();
    ASSERT_EQ(line.ended.at(0).kind, Kind::Refused);
    EXPECT_EQ(refusalText(line.ended[0]), "acknowledge code 1");
    line.send(switchOn);
    line.receive(positive);
    line.reportAnswer();
    EXPECT_EQ(line.ended.at(1).kind, Kind::Answered);
}

TEST(RequestEnds, TakesNoAnswerOfOneRequestForThatOfTheNext) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    line.send(readTwoRegisters);
    line.receive(refusal);
    line.reportFailure();
    line.reportAnswer(); // a poll without telegrams
    EXPECT_EQ(line.ended.at(1).kind, Kind::Answered);
    line.reportFailure();
    EXPECT_EQ(line.ended.at(2).kind, Kind::LineFailed) << "nothing could be sent";
    EXPECT_FALSE(line.ended[2].exchange);
}

TEST(RequestEnds, KnowsALineThatFailed) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    line.send(readTwoRegisters);
    line.wire().primaryEnd().receiveFailed();
    line.reportFailure();
    line.send(readTwoRegisters);
    line.reportFailure();
    EXPECT_EQ(line.ended.at(0).kind, Kind::LineFailed);
    EXPECT_EQ(line.ended.at(1).kind, Kind::NoAnswer);
}

// The line may be in the middle of another RTU's request.
TEST(RequestEnds, LeavesTheLineToItsThreadWhenACommandIsRefusedOffline) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    line.send(readTwoRegisters);
    std::thread([&] { line.reportFailure(); }).join();
    EXPECT_EQ(line.ended.at(0).kind, Kind::NotSent);
    line.receive(twoRegisters);
    line.reportAnswer();
    EXPECT_EQ(line.ended.at(1).kind, Kind::Answered);
}

TEST(RequestEnds, RemembersARefusalThroughAnswersToOtherRequests) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    line.send(readTwoRegisters);
    line.receive(refusal);
    line.reportFailure();
    EXPECT_TRUE(line.ends.wasRefused(channelId, rtuId));
    EXPECT_FALSE(line.ends.wasRefused(channelId, 8));
    line.send(readTwoRegisters);
    line.receive(twoRegisters);
    line.reportAnswer();
    EXPECT_TRUE(line.ends.wasRefused(channelId, rtuId));
    EXPECT_FALSE(line.ends.wasLastRequestRefused(channelId, rtuId));
    line.send(readTwoRegisters);
    line.reportFailure();
    EXPECT_FALSE(line.ends.wasRefused(channelId, rtuId)) << "the last failure was silence";
}

TEST(RequestEnds, KnowsAnRtuThatHasFallenSilent) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    EXPECT_FALSE(line.ends.isSilent(channelId, rtuId));
    line.send(readTwoRegisters);
    line.reportFailure();
    EXPECT_TRUE(line.ends.isSilent(channelId, rtuId));
    line.open();
    EXPECT_TRUE(line.ends.isSilent(channelId, rtuId)) << "an open line is no answer";
    line.send(readTwoRegisters);
    line.receive(refusal);
    line.reportFailure();
    EXPECT_FALSE(line.ends.isSilent(channelId, rtuId));
}

TEST(RequestEnds, PassesOverWhatBelongsToNoRtuOfTheSite) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    line.status.requests = 1;
    line.ends.publishRtuStatus(channelId, 8, line.status);
    line.ends.publishRtuStatus(3, rtuId, line.status);
    EXPECT_TRUE(line.ended.empty());
    EXPECT_EQ(line.core.rtuStatusCount(), 2);
}

TEST(RequestEnds, CountsRefusalsSilencesAndTheRoundTripsOfAllTelegramsThatWereAnswered) {
    const host::Site site = smallSite();
    ObservedLine line(site);
    line.send(readTwoRegisters);
    line.receive(twoRegisters);
    line.send(readTwoRegisters);
    line.receive(refusal);
    line.reportFailure();
    line.send(readTwoRegisters);
    line.reportFailure();
    const auto figures = line.ends.telegramFiguresOf(channelId, rtuId);
    EXPECT_EQ(figures.refusals, 1U);
    EXPECT_EQ(figures.silences, 1U);
    quint64 answered = 0;
    for (const std::uint64_t count : figures.roundTrips.counts)
        answered += count;
    EXPECT_EQ(answered, 2U) << "to the third telegram nothing came back";
    EXPECT_GE(figures.roundTrips.sum, std::chrono::microseconds(2));
}

TEST(RoundTripHistogram, CountsARoundTripInTheStepThatItEnds) {
    host::RoundTripHistogram trips;
    trips.add(std::chrono::microseconds(500));
    trips.add(std::chrono::microseconds(501));
    trips.add(std::chrono::microseconds(6'000'000));
    EXPECT_EQ(trips.counts[0], 1U);
    EXPECT_EQ(trips.counts[1], 1U);
    EXPECT_EQ(trips.counts.back(), 1U);
    host::RoundTripHistogram all = trips;
    all.add(trips);
    EXPECT_EQ(all.counts[0], 2U);
    EXPECT_EQ(all.sum, std::chrono::microseconds(12'002'002));
}
