#include "polling/StationRest.h"

#include <gtest/gtest.h>

using host::RetryPauses;
using host::StationRest;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

const RetryPauses fiveToSixty{seconds(5), seconds(60)};

} // namespace

TEST(StationRest, BeginsWithTheThirdSilenceInARow) {
    StationRest rest(fiveToSixty, false);
    rest.silent(seconds(1));
    rest.silent(seconds(2));
    EXPECT_FALSE(rest.isResting());
    rest.heard();
    rest.silent(seconds(3));
    rest.silent(seconds(4));
    EXPECT_FALSE(rest.isResting());
    rest.silent(seconds(5));
    EXPECT_TRUE(rest.isResting());
}

TEST(StationRest, PausesGrowUpToTheLongest) {
    StationRest rest(fiveToSixty, false);
    rest.silent({});
    rest.silent({});
    milliseconds now{0};
    for (const int pause : {5, 10, 20, 40, 60, 60}) {
        rest.silent(now);
        EXPECT_FALSE(rest.isDue(now + seconds(pause) - milliseconds(1))) << pause;
        EXPECT_TRUE(rest.isDue(now + seconds(pause))) << pause;
        now += seconds(pause);
    }
}

TEST(StationRest, EndsWithTheFirstAnswerAndBeginsAfreshLater) {
    StationRest rest(fiveToSixty, false);
    for (int second = 0; second < 10; ++second)
        rest.silent(seconds(second));
    rest.heard();
    EXPECT_FALSE(rest.isResting());
    for (int second = 100; second < 103; ++second)
        rest.silent(seconds(second));
    EXPECT_TRUE(rest.isDue(seconds(107)));
    EXPECT_FALSE(rest.isDue(seconds(106)));
}

TEST(StationRest, IsNotForAStationThatHasItsLineToItself) {
    StationRest rest(fiveToSixty, true);
    for (int second = 0; second < 10; ++second)
        rest.silent(seconds(second));
    EXPECT_FALSE(rest.isResting());
    EXPECT_TRUE(rest.isSilent());
}

TEST(StationRest, IsCutShortForSomebodyWhoAsks) {
    StationRest rest(fiveToSixty, false);
    for (int second = 0; second < 3; ++second)
        rest.silent(seconds(second));
    rest.hurry(seconds(3));
    EXPECT_TRUE(rest.isDue(seconds(3)));
}
