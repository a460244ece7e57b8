#include "Dispatching.h"

#include <gmock/gmock.h>

using namespace host;
using Halvex::DriverErrorResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

namespace {

constexpr auto success = DriverErrorResult::Success;

} // namespace

TEST_F(Dispatching, WhatNoRtuCanDoIsRefusedWithItsReason) {
    site.channels[0].rtus[0].points[0].address = {'I', 3};
    const std::string who = "channel 4 \"waterworks\", RTU 7 \"pump-house\" (station 5)";
    EXPECT_EQ(submit(SwitchPoint{1, true}, 7, 5), "there is no channel 5; check its id in the site file");
    EXPECT_EQ(submit(SwitchPoint{1, true}, 9), "channel 4 has no RTU 9; check its id in the site file");
    EXPECT_EQ(submit(SwitchPoint{99, true}),
              who + ": there is no point 99; check its number in the point table");
    EXPECT_EQ(submit(SwitchPoint{1, true}),
              who +
                  ", point 1 \"RUN\" (I3): is an input, which nobody can switch; command the output or flag "
                  "that acts on it");
    EXPECT_EQ(submit(SwitchPoint{3, true}), who + ", point 3 \"LEVEL\" (R101): is a register and cannot be "
                                                  "switched; give it a value instead");
    EXPECT_EQ(submit(SetPoint{1, 1}), who + ", point 1 \"RUN\" (I3): is no register, timer or counter and "
                                            "takes no value; switch it on or off instead");
    EXPECT_EQ(submit(SetPoints{{{3, 1}, {4, 1}}}),
              who + ": there is no point 4; check its number in the point table");
    EXPECT_EQ(submit(SetPoints{}), who + ": no values to set; give at least one");
    EXPECT_THAT(results.all(), IsEmpty());
    EXPECT_THAT(rtus[7].calls(), IsEmpty());
}

TEST_F(Dispatching, ValuesThatDoNotFitTheirElementAreRefused) {
    rtus[7].answerAtOnce(success);
    EXPECT_THAT(submit(SetPoint{3, 2147483648.0}),
                HasSubstr("does not fit a register; give a whole number from -2147483648 to 2147483647"));
    EXPECT_EQ(submit(SetPoint{3, 2147483647.0}), "");
    for (const double cut : {0.999, 1.5, -1.7, 2147483647.9}) // the driver would cut them
        EXPECT_THAT(submit(SetPoint{3, cut}), HasSubstr("give a whole number")) << cut;
    EXPECT_EQ(submit(SetPoint{3, -2147483648.0}), "");
    EXPECT_THAT(submit(SetPoint{2, 9.3e18}), HasSubstr("floating-point format"));
    EXPECT_THAT(submit(SetPoint{2, -1e-30}), HasSubstr("floating-point format"));
    EXPECT_EQ(submit(SetPoint{2, -9.2e18}), "");
    EXPECT_THAT(submit(SetPoint{2, std::numeric_limits<double>::quiet_NaN()}), HasSubstr("is no number"));
    EXPECT_EQ(results.await(3).size(), 3U);
}

TEST_F(Dispatching, TimersAndCountersTakeNoNegativeValues) {
    rtus[7].answerAtOnce(success);
    for (const char media : {'T', 'C'}) {
        site.channels[0].rtus[0].points[2].address = {media, 3};
        EXPECT_EQ(submit(SetPoint{3, 2147483647.0}), "");
        for (const double refused : {-1.0, -5.0, 1.5, 2147483648.0})
            EXPECT_THAT(submit(SetPoint{3, refused}), HasSubstr("give a whole number from 0 to 2147483647"))
                << media << refused;
    }
    results.await(2);
}

TEST_F(Dispatching, ValuesAreScaledBackForTheDriver) {
    Engineering engineering;
    engineering.scaling = Scaling(0.1, -20);
    site.channels[0].rtus[0].points[2].engineering = std::make_shared<const Engineering>(engineering);
    rtus[7].answerAtOnce(success);
    EXPECT_EQ(submit(SetPoint{3, 21.5}), "");
    EXPECT_EQ(submit(SetPoints{{{3, -20.1}}}), "");
    EXPECT_THAT(submit(SetPoint{3, 21.57}),
                HasSubstr("\"LEVEL\" (R101): the value does not fit a register; give "
                          "21.5 or 21.6"));
    results.await(2);
    EXPECT_THAT(rtus[7].calls(), ElementsAre("set 2 415", "set 2 -1"));
}

TEST_F(Dispatching, ARegisterOfFormatIeeeGetsTheBitsOfTheNumber) {
    site.channels[0].rtus[0].points[2].isIeee = true;
    rtus[7].answerAtOnce(success);
    EXPECT_EQ(submit(SetPoint{3, 1.5}), "");
    EXPECT_EQ(submit(SetPoint{3, 0}), "");
    EXPECT_THAT(submit(SetPoint{3, 1e39}), HasSubstr("does not fit single precision"));
    results.await(2);
    EXPECT_THAT(rtus[7].calls(), ElementsAre("set 2 1069547520", "set 2 0"));
}

TEST_F(Dispatching, AClockOnAnEthernetLineIsRefused) {
    site.channels[0].type = host::LineType::Ethernet;
    EXPECT_EQ(submit(SynchroniseClock{}),
              "channel 4 \"waterworks\", RTU 7 \"pump-house\" (station 5): not possible on Ethernet; set the "
              "clock over a serial line");
    EXPECT_THAT(rtus[7].calls(), IsEmpty());
}

TEST_F(Dispatching, ADisabledRtuTakesNoCommands) {
    site.channels[0].rtus[0].enabled = false;
    EXPECT_EQ(submit(SynchroniseClock{}), "channel 4 \"waterworks\", RTU 7 \"pump-house\" (station 5) is "
                                          "disabled; enable it in the site file and start anew");
}
