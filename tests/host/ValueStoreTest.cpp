#include "values/ValueStore.h"
#include "SmallSite.h"

#include <gtest/gtest.h>

using host::PointChange;
using host::ValueStore;

namespace {

class ValueStoreTest : public testing::Test {
protected:
    void publish(unsigned number, double value, PointQuality quality = PointQuality::Good) {
        store.publishPoints(
            4, 7, {PointUpdate{false, number, value, CMidTime(QDateTime::currentDateTime(), 0), quality}});
    }

    const host::Site site = smallSite();
    ValueStore store{site, ValueStore::Changes::Keep};
};

} // namespace

TEST_F(ValueStoreTest, StartsWithPointsNeverRead) {
    ASSERT_EQ(store.states().size(), 3U);
    EXPECT_EQ(store.states()[0].quality, PointQuality::NeverRead);
    EXPECT_TRUE(store.takeChanges().empty());
}

TEST_F(ValueStoreTest, KeepsTheFirstValueAsAChangeEvenIfItIsZero) {
    publish(2, 0);
    const std::vector<PointChange> changes = store.takeChanges();
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(store.points()[changes[0].index].point->name, "FLOW");
    EXPECT_EQ(changes[0].state.quality, PointQuality::Good);
}

TEST_F(ValueStoreTest, TellsEachChangeOnceAndInOrder) {
    publish(2, 1);
    publish(2, 1);
    publish(2, 2);
    publish(2, 2, PointQuality::Bad);
    publish(2, 2, PointQuality::Bad);
    const std::vector<PointChange> changes = store.takeChanges();
    ASSERT_EQ(changes.size(), 3U);
    EXPECT_EQ(changes[0].state.value, 1);
    EXPECT_EQ(changes[1].state.value, 2);
    EXPECT_EQ(changes[2].state.quality, PointQuality::Bad);
    EXPECT_EQ(changes[2].state.value, 2);
    EXPECT_TRUE(store.takeChanges().empty());
}

TEST_F(ValueStoreTest, NeverShowsHiddenOrForeignPoints) {
    publish(host::firstHiddenNumber, 1);
    publish(99, 1);
    store.publishPoints(5, 7, {PointUpdate{false, 1, 1, {}, PointQuality::Good}});
    EXPECT_TRUE(store.takeChanges().empty());
}

TEST_F(ValueStoreTest, ChangesNothingOnceFrozen) {
    publish(1, 1);
    store.freeze();
    publish(1, 1, PointQuality::Bad);
    EXPECT_EQ(store.states()[0].quality, PointQuality::Good);
}

TEST_F(ValueStoreTest, CountsWhatASlowReaderLost) {
    constexpr int changes = 250'000;
    for (int i = 1; i <= changes; ++i)
        publish(2, i);
    const std::vector<PointChange> taken = store.takeChanges();
    EXPECT_GT(store.lostChanges(), 0U);
    EXPECT_EQ(taken.size() + store.lostChanges(), static_cast<std::size_t>(changes));
    EXPECT_EQ(taken.back().state.value, changes);
}
