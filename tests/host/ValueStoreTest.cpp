#include "values/ValueStore.h"
#include "SmallSite.h"
#include "values/ChangeReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::ChangeReader;
using host::PointChange;
using host::PointState;
using host::ValueStore;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Numbers in the driver's records: RUN 0, FLOW 1, LEVEL 2.
class ValueStoreTest : public testing::Test {
protected:
    void publish(unsigned number, double value, PointQuality quality = PointQuality::Good) {
        store.publishPoints(
            4, 7, {PointUpdate{false, number, value, CMidTime(QDateTime::currentDateTime(), 0), quality}});
    }
    std::vector<PointChange> read(std::size_t most = 100) {
        std::vector<PointChange> changes;
        reader.read(changes, most);
        return changes;
    }

    const host::Site site = smallSite();
    ValueStore store{site};
    ChangeReader reader{store};
};

} // namespace

TEST_F(ValueStoreTest, StartsWithPointsNeverRead) {
    ASSERT_EQ(store.points().size(), 3U);
    EXPECT_EQ(store.state(0).quality, PointQuality::NeverRead);
    EXPECT_FALSE(store.state(0).hasValue());
    EXPECT_THAT(read(), IsEmpty());
}

TEST_F(ValueStoreTest, KeepsTheFirstValueAsAChangeEvenIfItIsZero) {
    publish(1, 0);
    const std::vector<PointChange> changes = read();
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(store.points().at(changes[0].index).point->name, "FLOW");
    EXPECT_EQ(changes[0].state.quality, PointQuality::Good);
}

TEST_F(ValueStoreTest, KeepsEachChangeOnceAndInOrder) {
    publish(1, 1);
    publish(1, 1);
    publish(1, 2);
    publish(1, 2, PointQuality::Bad);
    publish(1, 2, PointQuality::Bad);
    const std::vector<PointChange> changes = read();
    ASSERT_EQ(changes.size(), 3U);
    EXPECT_EQ(changes[0].state.value, 1);
    EXPECT_EQ(changes[1].state.value, 2);
    EXPECT_EQ(changes[2].state.quality, PointQuality::Bad);
    EXPECT_EQ(changes[2].state.value, 2);
    EXPECT_THAT(read(), IsEmpty());
}

TEST_F(ValueStoreTest, CountsHowOftenAPointWasReadGood) {
    publish(1, 5);
    publish(1, 5);
    publish(1, 5, PointQuality::Bad);
    publish(1, 5);
    EXPECT_EQ(store.state(1).readings, 3U);
    EXPECT_EQ(store.state(0).readings, 0U);
}

TEST_F(ValueStoreTest, NeverShowsHiddenOrForeignPoints) {
    publish(host::firstHiddenNumber, 1);
    publish(3, 1);
    publish(0xFFFF'FFFF, 1);
    store.publishPoints(5, 7, {PointUpdate{false, 1, 1, {}, PointQuality::Good}});
    store.publishPoints(4, 8, {PointUpdate{false, 1, 1, {}, PointQuality::Good}});
    EXPECT_THAT(read(), IsEmpty());
    EXPECT_EQ(store.changeCount(), 0U);
}

TEST_F(ValueStoreTest, TurnsOnlyGoodValuesBad) {
    publish(1, 0, PointQuality::Bad);
    EXPECT_EQ(store.state(1).quality, PointQuality::NeverRead);
    publish(1, 0, PointQuality::Refused);
    publish(1, 0, PointQuality::Bad);
    EXPECT_EQ(store.state(1).quality, PointQuality::Refused);
    publish(1, 7);
    publish(1, 0, PointQuality::Bad);
    EXPECT_EQ(store.state(1).quality, PointQuality::Bad);
    EXPECT_EQ(store.state(1).value, 7);
}

TEST_F(ValueStoreTest, ChangesNothingOnceFrozen) {
    publish(0, 1);
    store.freeze();
    publish(0, 1, PointQuality::Bad);
    publish(0, 2);
    EXPECT_EQ(store.state(0).quality, PointQuality::Good);
    EXPECT_EQ(store.state(0).value, 1);
    EXPECT_EQ(read().size(), 1U);
}

TEST_F(ValueStoreTest, CopiesStatesWithTheNumberOfTheFirstChangeThatIsNotInThem) {
    publish(1, 5);
    publish(2, 6);
    std::vector<PointState> states;
    EXPECT_EQ(store.copyStates(1, 1, states), 2U);
    ASSERT_EQ(states.size(), 1U);
    EXPECT_EQ(states[0].value, 5);
    publish(1, 7);
    EXPECT_EQ(store.copyStates(1, 100, states), 3U);
    ASSERT_EQ(states.size(), 2U);
    EXPECT_EQ(states[0].value, 7);
    EXPECT_EQ(states[1].value, 6);
    store.copyStates(3, 1, states);
    EXPECT_THAT(states, IsEmpty());
}

TEST(ValueStoreOfManyPoints, CopiesNoMoreThanABoundedPieceAtOnce) {
    host::Site site = smallSite();
    std::vector<host::Point>& points = site.channels[0].rtus[0].points;
    points.resize(ValueStore::mostAtOnce + 1, points[0]);
    const ValueStore store(site);
    std::vector<PointState> states;
    store.copyStates(0, points.size(), states);
    EXPECT_EQ(states.size(), ValueStore::mostAtOnce);
    store.copyStates(ValueStore::mostAtOnce, points.size(), states);
    EXPECT_EQ(states.size(), 1U);
}
