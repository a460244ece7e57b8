#include "site/StationRanges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::parseStations;
using testing::ElementsAre;

TEST(StationRanges, AreStationsAndRangesInAscendingOrder) {
    EXPECT_THAT(parseStations("5").stations, ElementsAre(5));
    EXPECT_THAT(parseStations("9..11").stations, ElementsAre(9, 10, 11));
    EXPECT_THAT(parseStations("4..6,1,5").stations, ElementsAre(1, 4, 5, 6));
    EXPECT_EQ(parseStations("0..253").stations.size(), 254U);
    EXPECT_EQ(parseStations("0..254").stations.back(), 254U);
}

TEST(StationRanges, AreRefusedWithThePartThatIsWrong) {
    for (const char* const text :
         {"", "x", "255", "0..255", "9..5", "1..", "..9", "1,", "1-4", "-1", "1...4"}) {
        EXPECT_TRUE(parseStations(text).stations.empty()) << text;
        EXPECT_FALSE(parseStations(text).what.empty()) << text;
    }
    EXPECT_EQ(parseStations("1,7..300").what, "\"7..300\" is no station and no range of stations");
}
