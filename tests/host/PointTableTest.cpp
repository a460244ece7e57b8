#include "values/PointTable.h"
#include "SmallSite.h"

#include <gtest/gtest.h>

using host::PointTable;

namespace {

// RTU 9 with three points, 3 without any, 5 with two, on channel 4; RTU 9 with one on channel 2.
class Table : public testing::Test {
protected:
    static host::Rtu rtu(int id, std::size_t points) {
        host::Rtu made;
        made.id = id;
        for (unsigned i = 0; i < points; ++i) {
            host::Point point;
            point.id = 10 * (i + 1);
            made.points.push_back(point);
        }
        return made;
    }
    static host::Site describe() {
        host::Site site;
        site.channels.resize(2);
        site.channels[0].id = 4;
        site.channels[0].rtus = {rtu(9, 3), rtu(3, 0), rtu(5, 2)};
        site.channels[1].id = 2;
        site.channels[1].rtus = {rtu(9, 1), rtu(6, 0)};
        return site;
    }

    const host::Site site = describe();
    const PointTable table{site};
};

} // namespace

TEST_F(Table, NumbersPointsWithoutGapsInTheOrderOfTheFile) {
    ASSERT_EQ(table.size(), 6U);
    const std::vector<host::Rtu>& rtus = site.channels[0].rtus;
    EXPECT_EQ(table.at(0).point, &rtus[0].points[0]);
    EXPECT_EQ(table.at(2).point, &rtus[0].points[2]);
    EXPECT_EQ(table.at(2).rtu, &rtus[0]);
    EXPECT_EQ(table.at(3).point, &rtus[2].points[0]); // behind the RTU without points
    EXPECT_EQ(table.at(4).channel, &site.channels[0]);
    EXPECT_EQ(table.at(5).point, &site.channels[1].rtus[0].points[0]);
    EXPECT_EQ(table.at(5).channel, &site.channels[1]);
}

TEST_F(Table, FindsTheBlockOfAnRtuByBothIds) {
    ASSERT_NE(table.find(4, 5), nullptr);
    EXPECT_EQ(table.find(4, 5)->first, 3U);
    EXPECT_EQ(table.find(4, 5)->end(), 5U);
    EXPECT_EQ(table.find(2, 9)->first, 5U);
    EXPECT_EQ(table.find(4, 9)->first, 0U);
    EXPECT_EQ(table.find(4, 3)->count, 0U);
    EXPECT_EQ(table.find(2, 5), nullptr);
    EXPECT_EQ(table.find(9, 9), nullptr);
    EXPECT_EQ(table.find(0, 0), nullptr);
}

TEST_F(Table, KnowsThePlaceOfABlock) {
    EXPECT_EQ(table.placeOf(table.blockOf(0)), 0U);
    EXPECT_EQ(table.placeOf(table.blockOf(4)), 2U);
    EXPECT_EQ(table.blocks()[table.placeOf(*table.find(2, 9))].first, 5U);
}

TEST(TableOfNothing, IsEmpty) {
    const host::Site site;
    const PointTable table(site);
    EXPECT_EQ(table.size(), 0U);
    EXPECT_EQ(table.find(1, 1), nullptr);
}
