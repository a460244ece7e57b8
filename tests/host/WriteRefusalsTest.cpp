#include "runtime/WriteRefusals.h"

#include "SmallSite.h"

#include <gtest/gtest.h>

using Halvex::PacketType;
using host::WriteRefusals;

namespace {

// RTU 7 of channel 4, on a serial line in Data Mode.
class Refusals : public testing::Test {
protected:
    Refusals() {
        site.channels[0].type = host::LineType::Serial;
        site.channels[0].primary = host::SerialEnd{};
    }

    static void trace(PacketType type, const char* hex) {
        CLogger* const log = CLogger::GetInstance();
        log->writeConPacket(4, 7, type, QStringLiteral("frame"), true);
        log->writeConPacket(4, 7, type, QString::fromLatin1(hex), false);
    }

    host::Site site = smallSite();
};

} // namespace

TEST_F(Refusals, ANegativeAcknowledgeIsOneUntilTheNextTelegram) {
    const WriteRefusals refusals(site);
    EXPECT_FALSE(refusals.isLastAnswerRefusal(4, 7));
    trace(PacketType::Sent, "B5 00 05 0D 02 00 28 00 01 12 34 ");
    trace(PacketType::Received, "B5 02 00 01 12 34 ");
    EXPECT_TRUE(refusals.isLastAnswerRefusal(4, 7));
    EXPECT_FALSE(refusals.isLastAnswerRefusal(4, 8));
    trace(PacketType::Sent, "B5 00 05 0D 02 00 28 00 01 12 34 ");
    EXPECT_FALSE(refusals.isLastAnswerRefusal(4, 7));
    trace(PacketType::Received, "B5 02 00 00 12 34 ");
    EXPECT_FALSE(refusals.isLastAnswerRefusal(4, 7));
}

// There the driver tells them itself.
TEST_F(Refusals, AreLookedForInDataModeOnly) {
    site.channels[0].rtus[0].transmitType = host::TransmitType::Break;
    const WriteRefusals refusals(site);
    trace(PacketType::Received, "B5 02 00 01 12 34 ");
    EXPECT_FALSE(refusals.isLastAnswerRefusal(4, 7));
}
