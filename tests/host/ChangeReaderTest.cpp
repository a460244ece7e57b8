#include "values/ChangeReader.h"
#include "SmallSite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using host::ChangeReader;
using host::PointChange;
using host::ValueStore;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::size_t kept = 8; // changes

class Changes : public testing::Test {
protected:
    // New values of FLOW.
    void publish(int first, int last) {
        for (int value = first; value <= last; ++value)
            store.publishPoints(4, 7, {PointUpdate{true, 1, double(value), {}, PointQuality::Good}});
    }
    static std::vector<double> read(ChangeReader& reader, std::size_t most = 100) {
        std::vector<PointChange> changes;
        reader.read(changes, most);
        std::vector<double> values;
        for (const PointChange& change : changes)
            values.push_back(change.state.value);
        return values;
    }

    const host::Site site = smallSite();
    ValueStore store{site, kept};
};

} // namespace

TEST_F(Changes, AreReadInPortionsOldestFirst) {
    ChangeReader reader(store);
    publish(1, 5);
    EXPECT_THAT(read(reader, 2), ElementsAre(1, 2));
    EXPECT_EQ(reader.position(), 2U);
    EXPECT_THAT(read(reader, 2), ElementsAre(3, 4));
    EXPECT_THAT(read(reader, 2), ElementsAre(5));
    EXPECT_THAT(read(reader, 2), IsEmpty());
    EXPECT_EQ(reader.takeMissed(), 0U);
}

TEST_F(Changes, OfAFullRingAreAllStillThere) {
    ChangeReader reader(store);
    publish(1, 8);
    EXPECT_THAT(read(reader), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    publish(9, 16);
    EXPECT_THAT(read(reader), ElementsAre(9, 10, 11, 12, 13, 14, 15, 16));
    EXPECT_EQ(reader.takeMissed(), 0U);
}

TEST_F(Changes, ThatWereOverwrittenAreCountedAsMissedOnce) {
    ChangeReader reader(store);
    publish(1, 2);
    EXPECT_THAT(read(reader), ElementsAre(1, 2));
    publish(3, 21);
    EXPECT_THAT(read(reader, 3), ElementsAre(14, 15, 16));
    EXPECT_EQ(reader.takeMissed(), 11U);
    EXPECT_EQ(reader.takeMissed(), 0U);
    EXPECT_THAT(read(reader), ElementsAre(17, 18, 19, 20, 21));
    EXPECT_EQ(reader.position(), 21U);
}

TEST_F(Changes, AreReadByEachAtItsOwnPace) {
    ChangeReader fast(store);
    ChangeReader slow(store);
    publish(1, 6);
    EXPECT_THAT(read(fast), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(read(slow, 1), ElementsAre(1));
    publish(7, 12);
    EXPECT_THAT(read(fast), ElementsAre(7, 8, 9, 10, 11, 12));
    EXPECT_THAT(read(slow), ElementsAre(5, 6, 7, 8, 9, 10, 11, 12));
    EXPECT_EQ(fast.takeMissed(), 0U);
    EXPECT_EQ(slow.takeMissed(), 3U);
}

TEST_F(Changes, BeforeAReaderBeganAreNotMissed) {
    publish(1, 4);
    ChangeReader late(store, store.changeCount());
    EXPECT_THAT(read(late), IsEmpty());
    publish(5, 5);
    EXPECT_THAT(read(late), ElementsAre(5));
    publish(6, 20);
    late.skipToEnd();
    EXPECT_THAT(read(late), IsEmpty());
    EXPECT_EQ(late.takeMissed(), 0U);
}

// Each thread counts up at a point of its own, so that a change that is torn, lost, doubled or out of order
// shows.
TEST(ChangesOfManyThreads, ReachEveryReaderInOrderOrAreCountedAsMissed) {
    constexpr unsigned publishers = 3;
    constexpr int values = 30'000;
    const host::Site site = smallSite();
    ValueStore store(site, 1'024);
    std::atomic<unsigned> publishing{publishers};
    std::vector<std::thread> threads;
    for (unsigned number = 0; number < publishers; ++number)
        threads.emplace_back([&, number] {
            for (int value = 1; value <= values; ++value)
                store.publishPoints(4, 7, {PointUpdate{true, number, double(value), {}, PointQuality::Good}});
            --publishing;
        });
    for (const std::size_t most : {10U, 5'000U})
        threads.emplace_back([&, most] {
            ChangeReader reader(store);
            std::vector<PointChange> changes;
            std::vector<double> last(publishers, 0);
            std::uint64_t got = 0;
            std::uint64_t missed = 0;
            for (;;) {
                const bool isLast = publishing == 0;
                reader.read(changes, most);
                got += changes.size();
                missed += reader.takeMissed();
                for (const PointChange& change : changes) {
                    ASSERT_GT(change.state.value, last[change.index]);
                    ASSERT_EQ(change.state.readings, change.state.value);
                    last[change.index] = change.state.value;
                }
                if (isLast && changes.empty())
                    break;
            }
            EXPECT_EQ(got + missed, std::uint64_t{publishers} * values);
        });
    for (std::thread& thread : threads)
        thread.join();
    for (unsigned number = 0; number < publishers; ++number)
        EXPECT_EQ(store.state(number).value, values);
}
