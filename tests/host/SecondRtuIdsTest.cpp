#include "runtime/LinePoller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using testing::ElementsAre;

namespace {

host::Channel channelWith(const std::vector<int>& ids) {
    host::Channel channel;
    for (const int id : ids) {
        host::Rtu rtu;
        rtu.id = id;
        channel.rtus.push_back(rtu);
    }
    return channel;
}

} // namespace

TEST(SecondRtuIds, ComeBehindThoseOfTheSite) {
    EXPECT_THAT(host::secondRtuIds(channelWith({7, 3, 12})), ElementsAre(13, 14, 15));
}

TEST(SecondRtuIds, AreFreeOnesWhereThereIsNoRoomBehind) {
    constexpr int highest = std::numeric_limits<int>::max();
    EXPECT_THAT(host::secondRtuIds(channelWith({highest, 1, 3})), ElementsAre(2, 4, 5));
}
