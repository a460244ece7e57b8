#include "EveryLine.h"

using Recovery = EveryLine;
using sim::Media;

ON_EVERY_LINE(Recovery);

namespace {

void addOneRegister(Plant& plant, int station) {
    plant.memory(station).set(Media::Registers, 1, 11);
    plant.addAnalogPoint(station, 1, QStringLiteral("R1"));
}

bool isGoodWith(Plant& plant, int station, double value) {
    const PointUpdate point = plant.points(station)[1];
    return point.quality == PointQuality::Good && point.value == value;
}

} // namespace

TEST_P(Recovery, AControllerThatGoesSilentTurnsBadAndReturnsWithItsNewValue) {
    Plant plant(GetParam(), {5});
    addOneRegister(plant, 5);
    plant.start();
    ASSERT_TRUE(Plant::eventually([&] { return isGoodWith(plant, 5, 11); }));

    plant.controllers().silence(Plant::lineId, 5, true);
    ASSERT_TRUE(Plant::eventually([&] { return plant.allPointsAre(5, PointQuality::Bad); }));
    EXPECT_EQ(plant.points(5)[1].value, 11);

    plant.memory(5).set(Media::Registers, 1, 12);
    plant.controllers().silence(Plant::lineId, 5, false);
    EXPECT_TRUE(Plant::eventually([&] { return isGoodWith(plant, 5, 12); }));
}

TEST_P(Recovery, ASilentControllerLeavesTheOthersReadable) {
    Plant plant(GetParam(), {1, 2, 3});
    for (const int station : {1, 2, 3})
        addOneRegister(plant, station);
    plant.controllers().silence(Plant::lineId, 2, true);
    plant.start();
    for (const unsigned value : {21U, 22U}) {
        for (const int station : {1, 3}) {
            plant.memory(station).set(Media::Registers, 1, value);
            EXPECT_TRUE(Plant::eventually([&] { return isGoodWith(plant, station, value); }))
                << "station " << station << ", value " << value;
        }
    }
    EXPECT_EQ(plant.points(2)[1].quality, PointQuality::NeverRead);
}

TEST_P(Recovery, ALineThatDropsTurnsBadAndReturns) {
    Plant plant(GetParam(), {5});
    addOneRegister(plant, 5);
    plant.start();
    ASSERT_TRUE(Plant::eventually([&] { return isGoodWith(plant, 5, 11); }));

    for (const unsigned value : {31U, 32U}) {
        plant.controllers().cut(Plant::lineId);
        ASSERT_TRUE(Plant::eventually([&] { return plant.allPointsAre(5, PointQuality::Bad); }));
        plant.memory(5).set(Media::Registers, 1, value);
        ASSERT_EQ(plant.controllers().restore(Plant::lineId), "");
        ASSERT_TRUE(Plant::eventually([&] { return isGoodWith(plant, 5, value); })) << "value " << value;
    }
}

// A serial line is drained for five seconds before it goes on.
TEST_P(Recovery, ALineGoesOnAfterAWrongChecksum) {
    sim::Options spoilt;
    spoilt.faults.crc = 1;
    Plant plant(GetParam(), {5}, spoilt);
    addOneRegister(plant, 5);
    plant.start();
    ASSERT_TRUE(Plant::eventually([&] { return plant.controllers().counts(Plant::lineId).faults.crc > 0; }));
    EXPECT_EQ(plant.points(5)[1].quality, PointQuality::NeverRead);
    plant.controllers().setFaults(Plant::lineId, {});
    ASSERT_TRUE(Plant::eventually([&] { return isGoodWith(plant, 5, 11); }));
    EXPECT_GT(plant.rtu(5).GetRtuStatus().errors, 0U);
}

TEST_P(Recovery, ALineGoesOnOverItsOtherEndAndBack) {
    using sim::End;
    Plant plant(GetParam(), {5});
    addOneRegister(plant, 5);
    plant.useSecondaryEnd();
    plant.start();
    ASSERT_TRUE(Plant::eventually([&] { return isGoodWith(plant, 5, 11); }));
    EXPECT_EQ(plant.channel().GetWhereLink(), 0);

    plant.controllers().cut(Plant::lineId, End::Primary);
    plant.memory(5).set(Media::Registers, 1, 41);
    ASSERT_TRUE(Plant::eventually([&] { return isGoodWith(plant, 5, 41); }));
    EXPECT_EQ(plant.channel().GetWhereLink(), 1);

    ASSERT_EQ(plant.controllers().restore(Plant::lineId, End::Primary), "");
    plant.controllers().cut(Plant::lineId, End::Secondary);
    plant.memory(5).set(Media::Registers, 1, 42);
    ASSERT_TRUE(Plant::eventually([&] { return isGoodWith(plant, 5, 42); }));
    EXPECT_EQ(plant.channel().GetWhereLink(), 0);
    EXPECT_EQ(plant.channel().GetChannelStatus().linkChanges, 2U);
}

TEST_P(Recovery, ALineThatComesLateIsOpenedThen) {
    Plant plant(GetParam(), {5});
    addOneRegister(plant, 5);
    plant.leaveLineDead();
    plant.start();
    ASSERT_TRUE(Plant::eventually([&] {
        const ChannelStatus status = plant.channel().GetChannelStatus();
        return status.failedOpens + status.channelErrors > 0;
    }));
    EXPECT_EQ(plant.points(5)[1].quality, PointQuality::NeverRead);

    ASSERT_EQ(plant.controllers().restore(Plant::lineId), "");
    EXPECT_TRUE(Plant::eventually([&] { return isGoodWith(plant, 5, 11); }));
}
