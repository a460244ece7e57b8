#include <SBusRequestItem.h>

#include <gtest/gtest.h>

namespace {

SBusRequestItem changedBy(void (*change)(SBusRequestItem&)) {
    SBusRequestItem item{6, 1, 10, "x"};
    change(item);
    return item;
}

} // namespace

TEST(SBusRequestItem, IsMadeOfZerosAndWithoutData) {
    const SBusRequestItem item;
    EXPECT_EQ(item.command, 0u);
    EXPECT_EQ(item.count, 0u);
    EXPECT_EQ(item.address, 0u);
    EXPECT_TRUE(item.data.isEmpty());
}

TEST(SBusRequestItem, IsEqualToOneWithTheSameFieldsOnly) {
    const SBusRequestItem item{6, 1, 10, "x"};
    EXPECT_TRUE(item == changedBy([](SBusRequestItem&) {}));
    EXPECT_FALSE(item == changedBy([](SBusRequestItem& other) { other.command = 7; }));
    EXPECT_FALSE(item == changedBy([](SBusRequestItem& other) { other.count = 2; }));
    EXPECT_FALSE(item == changedBy([](SBusRequestItem& other) { other.address = 11; }));
    EXPECT_FALSE(item == changedBy([](SBusRequestItem& other) { other.data = "y"; }));
}
