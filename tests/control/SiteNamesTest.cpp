#include "services/control/SiteNames.h"
#include "FakeHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::SiteNames;
using testing::HasSubstr;
using testing::Not;

namespace {

class Names : public testing::Test {
protected:
    const host::Site site = controlSite();
    const host::PointTable points{site};
    const SiteNames names{points};
};

} // namespace

TEST_F(Names, FindAPointByRtuAndPoint) {
    const auto match = names.findPoint("hill/RUN");
    EXPECT_EQ(match.fault, "");
    EXPECT_EQ(match.found.channel->id, 5);
    EXPECT_EQ(match.found.rtu->id, 1);
    EXPECT_EQ(match.found.point->id, 1U);
}

TEST_F(Names, FindAPointWithItsChannelInFront) {
    EXPECT_EQ(names.findPoint("reservoirs/hill/RUN").found.point, names.findPoint("hill/RUN").found.point);
}

TEST_F(Names, FindAPointThatOnlyOneOfTwoRtusOfANameHas) {
    EXPECT_EQ(names.findPoint("pump-house/FLOW").found.channel->id, 4);
    EXPECT_EQ(names.findPoint("pump-house/VALVE").found.channel->id, 5);
}

TEST_F(Names, TellWhatANameOfSeveralMayMean) {
    EXPECT_EQ(names.findPoint("pump-house/RUN").fault,
              "there are 2 of \"pump-house/RUN\": write \"waterworks/pump-house/RUN\", "
              "\"reservoirs/pump-house/RUN\"");
    EXPECT_EQ(names.findRtu("pump-house").fault,
              "there are 2 of \"pump-house\": write \"waterworks/pump-house\", \"reservoirs/pump-house\"");
    EXPECT_EQ(names.findPoint("waterworks/pump-house/RUN").found.channel->id, 4);
    EXPECT_EQ(names.findRtu("reservoirs/pump-house").found.rtu->id, 3);
}

TEST_F(Names, TellWhatIsNearAnUnknownName) {
    EXPECT_THAT(names.findPoint("hill/RN").fault, HasSubstr("no point \"hill/RN\"; near it: \"hill/RUN\""));
    EXPECT_THAT(names.findPoint("HILL/run").fault, HasSubstr("\"hill/RUN\""));
    EXPECT_THAT(names.findPoint("VALVE").fault, HasSubstr("\"pump-house/VALVE\""));
    EXPECT_THAT(names.findPoint("pumphouse/FLOW").fault, HasSubstr("\"pump-house/FLOW\""));
    EXPECT_THAT(names.findRtu("hil").fault, HasSubstr("no RTU \"hil\"; near it: \"hill\""));
}

TEST_F(Names, TellNothingNearWhereNothingIs) {
    EXPECT_EQ(names.findPoint("completely/different").fault, "no point \"completely/different\"");
    EXPECT_THAT(names.findPoint(std::string(60'000, 'x')).fault, Not(HasSubstr("near")));
    EXPECT_LT(names.findPoint(std::string(60'000, 'x')).fault.size(), 300U);
}

TEST_F(Names, AreAsShortAsTheyCanBe) {
    EXPECT_EQ(names.nameOf(names.findPoint("reservoirs/hill/RUN").found), "hill/RUN");
    EXPECT_EQ(names.nameOf(names.findPoint("waterworks/pump-house/RUN").found), "waterworks/pump-house/RUN");
    EXPECT_EQ(names.nameOf(names.findRtu("reservoirs/tank").found), "tank");
}
