#include "SitePoint.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace sim;

TEST(SitePoint, IsReadAsPeopleWriteIt) {
    for (const char* const text : {"R7", "r7", "R 007"}) {
        const auto point = parsePoint(text, "");
        ASSERT_TRUE(point) << text;
        EXPECT_EQ(point->media, Media::Registers) << text;
        EXPECT_EQ(point->address, 7U) << text;
        EXPECT_FALSE(point->isFloat) << text;
    }
    EXPECT_TRUE(parsePoint("R7", "float")->isFloat);
    EXPECT_TRUE(parsePoint("R7", "IEEE")->isIeee);
    EXPECT_FALSE(parsePoint("R7", "IEEE")->isFloat);
}

TEST(SitePoint, IsNotMadeOfAnythingElse) {
    for (const char* const text : {"", "R", "7", "X7", "R-1", "R65536", "R7x"})
        EXPECT_FALSE(parsePoint(text, "")) << text;
}

TEST(PointTable, IsReadWithEitherSeparatorAndWithAMark) {
    TemporaryFolder folder;
    const auto points = readPointTable(folder.write("a.csv", "\xEF\xBB\xBF"
                                                             "address;name\r\nI5;A\r\nT6;B\r\n"));
    ASSERT_EQ(points.size(), 2U);
    EXPECT_EQ(points[0].media, Media::Inputs);
    EXPECT_EQ(points[1].address, 6U);
}

TEST(PointTable, ThatIsNotThereHasNoPoints) {
    EXPECT_TRUE(readPointTable("/no/such/file.csv").empty());
}
