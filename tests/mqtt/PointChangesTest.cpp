#include "services/PointChanges.h"
#include "SmallSite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using testing::ElementsAre;

namespace {

class PointChangesTest : public testing::Test {
protected:
    void publish(unsigned position, double value) {
        store.publishPoints(4, 7, {PointUpdate{true, position, value, {}, PointQuality::Good}});
    }
    static std::vector<std::string> textsOf(const std::vector<PointChange>& changes) {
        std::vector<std::string> texts;
        for (const PointChange& one : changes)
            texts.push_back(std::to_string(one.index) + "=" +
                            std::to_string(static_cast<int>(one.state.value)));
        return texts;
    }

    const Site site = smallSite();
    ValueStore store{site, 8};
    PointChanges changes{store};
};

} // namespace

TEST_F(PointChangesTest, GiveCurrentValuesBehindTheChangesThatTheyHold) {
    publish(1, 10);
    publish(1, 11);
    changes.beginCurrent();
    std::vector<PointChange> before;
    std::vector<PointChange> current;
    changes.readCurrent(before, current, 2);
    EXPECT_THAT(textsOf(before), ElementsAre("1=10", "1=11"));
    EXPECT_THAT(textsOf(current), ElementsAre("0=0", "1=11"));
    EXPECT_TRUE(changes.isTellingCurrent());
    publish(1, 12);
    publish(2, 20);
    before.clear();
    current.clear();
    changes.readCurrent(before, current, 2);
    EXPECT_THAT(textsOf(before), ElementsAre("1=12", "2=20"));
    EXPECT_THAT(textsOf(current), ElementsAre("2=20"));
    EXPECT_FALSE(changes.isTellingCurrent());
}

TEST_F(PointChangesTest, CountWhatWasOverwrittenBeforeItWasRead) {
    for (int value = 1; value <= 20; ++value)
        publish(1, value);
    std::vector<PointChange> read;
    changes.read(read, 100);
    EXPECT_EQ(read.size(), 8U);
    EXPECT_EQ(changes.takeMissed(), 12U);
    EXPECT_EQ(changes.takeMissed(), 0U);
}
