#include "SmallSite.h"
#include "runtime/FailureCollapser.h"
#include "runtime/FailureText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::FailureCollapser;
using host::failureReason;
using host::TransmitType;
using testing::AllOf;
using testing::HasSubstr;
using namespace std::chrono_literals;

namespace {

const FailureCollapser::Time start{};
const FailureCollapser::Source rtu{1, 2};

} // namespace

TEST(FailureText, NamesChannelAndRtu) {
    const host::Site site = smallSite();
    const host::Channel& channel = site.channels[0];
    EXPECT_EQ(nameOf(channel, &channel.rtus[0]),
              "channel 4 \"waterworks\", RTU 7 \"pump-house\" (station 5)");
    EXPECT_EQ(nameOf(channel, nullptr), "channel 4 \"waterworks\"");
}

TEST(FailureText, TellsWhatToCheck) {
    const host::Site site = smallSite();
    const host::Channel& channel = site.channels[0];
    EXPECT_THAT(failureReason(channel, &channel.rtus[0], "Request result : Timeout", ""),
                AllOf(HasSubstr("no complete answer"), HasSubstr("200 ms"), HasSubstr("check"),
                      HasSubstr("station number 5"), HasSubstr("udp://127.0.0.1:9")));
    EXPECT_THAT(failureReason(channel, nullptr, "Error opening channel", ""),
                AllOf(HasSubstr("cannot open udp://127.0.0.1:9"), HasSubstr("check")));
}

TEST(FailureText, TellsSilenceOnEthernetAsWhatItIs) {
    const host::Site site = smallSite();
    const host::Channel& channel = site.channels[0];
    EXPECT_THAT(failureReason(channel, &channel.rtus[0], "Request result : Chennel Error", ""),
                HasSubstr("no complete answer"));
}

TEST(FailureText, TellsRefusalsFromDamage) {
    const host::Site site = smallSite();
    const host::Channel& channel = site.channels[0];
    const auto text = [&](const char* protocolError) {
        return failureReason(channel, &channel.rtus[0], "Request result : Bad Data", protocolError);
    };
    EXPECT_THAT(text("Ack Error: 1"), HasSubstr("refused"));
    EXPECT_THAT(text("Nak Error"), HasSubstr("refused"));
    EXPECT_THAT(text("CRC Error"), HasSubstr("damaged"));
    EXPECT_THAT(text("Invaild Sequence"), HasSubstr("not the one to the request"));
}

TEST(FailureText, KnowsANegativeAcknowledgeByItsBytes) {
    EXPECT_TRUE(host::isRefusedRead(TransmitType::Data, "B5 02 00 01 33 D5 00 00 "));
    EXPECT_FALSE(host::isRefusedRead(TransmitType::Data, "B5 01 00 01 33 D5 00 00 "));
    EXPECT_FALSE(host::isRefusedRead(TransmitType::Data, ""));
    EXPECT_TRUE(host::isRefusedRead(TransmitType::Break, "15 00 00 00 00 00 "));
    EXPECT_FALSE(host::isRefusedRead(TransmitType::Break, "15 00 01 00 00 00 "));
    EXPECT_FALSE(host::isRefusedRead(TransmitType::Break, "00 00 00 "));
}

TEST(FailureCollapser, TellsTheFirstOfAKindAtOnceAndTheOthersOnceAMinute) {
    FailureCollapser collapser;
    EXPECT_EQ(collapser.failed(rtu, "no answer", start), "no answer");
    for (int second = 1; second < 60; ++second)
        EXPECT_FALSE(collapser.failed(rtu, "no answer", start + std::chrono::seconds(second)));
    EXPECT_EQ(collapser.failed(rtu, "no answer", start + 60s),
              "no answer (59 more since this was last told)");
    EXPECT_FALSE(collapser.failed(rtu, "no answer", start + 61s));
}

TEST(FailureCollapser, KeepsKindsAndSourcesApart) {
    FailureCollapser collapser;
    EXPECT_TRUE(collapser.failed(rtu, "no answer", start));
    EXPECT_TRUE(collapser.failed(rtu, "refused", start));
    EXPECT_TRUE(collapser.failed({1, 3}, "no answer", start));
}

TEST(FailureCollapser, TellsTheEndOfAFailureOnce) {
    FailureCollapser collapser;
    EXPECT_FALSE(collapser.succeeded(rtu, "RTU 2"));
    EXPECT_TRUE(collapser.failed(rtu, "no answer", start));
    EXPECT_EQ(collapser.succeeded(rtu, "RTU 2"), "RTU 2: answers again");
    EXPECT_FALSE(collapser.succeeded(rtu, "RTU 2"));
    // A failure that is not told has no end to be told.
    EXPECT_FALSE(collapser.failed(rtu, "no answer", start + 5s));
    EXPECT_FALSE(collapser.succeeded(rtu, "RTU 2"));
}
