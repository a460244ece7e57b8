#include "runtime/FirstPolls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Two lines with a controller each.
class FirstPolls : public testing::Test {
protected:
    FirstPolls() {
        for (host::Channel* const channel : {&pumps, &wells}) {
            channel->rtus.emplace_back().points.emplace_back();
            figures.channels.push_back({channel, {}, {}});
            figures.rtus.emplace_back();
            figures.rtus.back().channel = channel;
            figures.rtus.back().rtu = &channel->rtus.front();
        }
    }

    std::vector<const host::Channel*> awaited() const { return host::linesBeforeFirstPoll(figures); }

    host::Channel pumps;
    host::Channel wells;
    host::SiteFigures figures;
};

} // namespace

TEST_F(FirstPolls, AreAwaitedOnEachLine) {
    EXPECT_THAT(awaited(), ElementsAre(&pumps, &wells));
    figures.rtus[0].status.requests = 1;
    EXPECT_THAT(awaited(), ElementsAre(&wells));
    figures.rtus[1].status.requests = 1;
    EXPECT_THAT(awaited(), IsEmpty());
}

TEST_F(FirstPolls, AreNotAwaitedOnALineThatCannotBeOpened) {
    figures.rtus[0].status.requests = 1;
    figures.channels[1].status.failedOpens = 1;
    EXPECT_THAT(awaited(), IsEmpty());
}

TEST_F(FirstPolls, AreNotAwaitedOfALineThatHasNothingToPoll) {
    figures.rtus[0].status.requests = 1;
    wells.rtus.front().enabled = false;
    EXPECT_THAT(awaited(), ElementsAre(&wells)) << "it is not open yet";
    figures.channels[1].status.connected = true;
    EXPECT_THAT(awaited(), IsEmpty());
}
