#include "EngineTest.h"

#include <type_traits>

namespace {

using RequestTest = EngineTest;

} // namespace

TEST_F(RequestTest, IsEqualToOneOfTheSameRtuLabelAndNumberOfTelegrams) {
    EXPECT_TRUE(request("poll").isEqualTo(request("poll")));
}

TEST_F(RequestTest, WhatTheTelegramsHoldDoesNotCount) {
    EXPECT_TRUE(request("poll", {{6, 0, 10, {}}}).isEqualTo(request("poll", {{2, 8, 500, hex("01")}})));
}

TEST_F(RequestTest, AnotherLabelMakesADifference) {
    EXPECT_FALSE(request("poll").isEqualTo(request("Poll")));
}

TEST_F(RequestTest, AnotherNumberOfTelegramsMakesADifference) {
    EXPECT_FALSE(request("poll", {write(), write()}).isEqualTo(request("poll", {write()})));
    EXPECT_FALSE(request("poll", {}).isEqualTo(request("poll", {write()})));
}

TEST_F(RequestTest, AnotherRtuMakesADifference) {
    SBusRequest other = request("poll");
    other.rtu = channel.add<PublishingRtu>(stationRecord(4, "5"));
    EXPECT_FALSE(request("poll").isEqualTo(other));
    other.rtu = nullptr;
    EXPECT_FALSE(request("poll").isEqualTo(other));
}

TEST_F(RequestTest, TheReplyDoesNotCount) {
    SBusRequest other = request("poll");
    other.reply = takenReply();
    EXPECT_TRUE(request("poll").isEqualTo(other));
    other.reply->release();
}

TEST_F(RequestTest, ACopyHasItsOwnItemsAndSharesRtuAndReply) {
    SBusRequest original = request("poll", {{14, 0, 10, hex("01 02")}});
    original.reply = takenReply();
    SBusRequest copy = original;
    copy.items[0].address = 99;
    copy.items[0].data[0] = 'x';
    copy.items << write();
    EXPECT_EQ(original.items.size(), 1);
    EXPECT_EQ(original.items[0].address, 10u);
    EXPECT_EQ(toHex(original.items[0].data), "01 02");
    EXPECT_EQ(copy.rtu, original.rtu);
    EXPECT_EQ(copy.reply, original.reply);
    original.reply->release();
}

TEST_F(RequestTest, MayBeDestroyedThroughItsBase) {
    EXPECT_TRUE(std::has_virtual_destructor_v<SBusRequest>);
}

TEST_F(RequestTest, StartsWithoutRtuItemsAndReply) {
    const SBusRequest empty;
    EXPECT_EQ(empty.rtu, nullptr);
    EXPECT_EQ(empty.reply, nullptr);
    EXPECT_TRUE(empty.items.isEmpty());
    const SBusRequestItem item;
    EXPECT_EQ(item.command, 0u);
}
