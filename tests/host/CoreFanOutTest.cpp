#include "runtime/CoreFanOut.h"

#include "RecordingCore.h"

#include <gtest/gtest.h>

TEST(CoreFanOut, PassesOnToEveryListenerUntilItIsRemoved) {
    RecordingCore first;
    RecordingCore second;
    host::CoreFanOut fanOut(first);
    fanOut.publishChannelStatus(4, {});
    fanOut.add(second);
    fanOut.publishPoints(4, 7, {PointUpdate{true, 3, 1.5, {}, PointQuality::Good}});
    fanOut.publishRtuStatus(4, 7, {});
    fanOut.remove(first);
    fanOut.publishChannelStatus(4, {});
    EXPECT_EQ(first.channelStatusCount(), 1);
    EXPECT_EQ(second.channelStatusCount(), 1);
    EXPECT_EQ(first.rtuStatusCount(), 1);
    EXPECT_EQ(second.rtuStatusCount(), 1);
    EXPECT_EQ(first.point(4, 7, 3)->value, 1.5);
    EXPECT_EQ(second.point(4, 7, 3)->value, 1.5);
}
