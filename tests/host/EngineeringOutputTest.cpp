#include "SmallSite.h"
#include "services/console/TableLayout.h"
#include "site/PointText.h"
#include "values/ChangeReader.h"
#include "values/ChangeText.h"
#include "values/ReadingText.h"

#include <QDateTime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

// What outputs show of points with scale, unit, decimals, deadband or format ieee, and when.

using namespace host;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr qint64 readAt = 1'700'000'000'125; // 2023-11-14T22:13:20.125Z

class EngineeringOutput : public testing::Test {
protected:
    EngineeringOutput() {
        Engineering engineering;
        engineering.scaling = Scaling(0.1, -20);
        engineering.unit = "\xC2\xB0"
                           "C";
        level().engineering = std::make_shared<const Engineering>(engineering);
    }

    Point& level() { return site.channels[0].rtus[0].points[2]; } // R101
    PointRef ref() {
        const Channel& channel = site.channels[0];
        return {&channel, &channel.rtus[0], &level()};
    }
    std::string written(const std::unique_ptr<ChangeText>& changeText, double raw,
                        PointQuality quality = PointQuality::Good) {
        std::string text;
        changeText->append(text, ref(), {raw, readAt, readAt, quality});
        return text;
    }
    void setDeadband(double deadband) {
        Engineering engineering = *level().engineering;
        engineering.deadband = deadband;
        level().engineering = std::make_shared<const Engineering>(engineering);
    }
    void makeIeee() {
        level().engineering = nullptr;
        level().isIeee = true;
    }

    // What a watcher is told of raw numbers that are read one after the other; "bad" for NaN in the list.
    std::vector<std::string> toldOf(const std::vector<double>& readings) {
        ValueStore store(site);
        ChangeReader reader(store);
        for (const double raw : readings)
            store.publishPoints(4, 7,
                                {std::isnan(raw) ? PointUpdate{false, 2, 0, {}, PointQuality::Bad}
                                                 : PointUpdate{false, 2, raw, {}, PointQuality::Good}});
        std::vector<PointChange> changes;
        reader.read(changes, 1'000);
        std::vector<std::string> told;
        for (const PointChange& change : changes)
            told.push_back(valueText(level(), change.state.value) +
                           (change.state.quality == PointQuality::Good ? "" : " bad"));
        shownAtLast = valueText(level(), store.state(2).value);
        return told;
    }

    Site site = smallSite();
    std::string shownAtLast;
    const double failed = std::numeric_limits<double>::quiet_NaN();
};

} // namespace

TEST_F(EngineeringOutput, ShowsValueAndUnitOnALine) {
    EXPECT_THAT(written(makeLineText(), 415), EndsWith("pump-house/LEVEL (R101) = 21.5 \xC2\xB0"
                                                       "C  good"));
}

TEST_F(EngineeringOutput, HasUnitAndRawNumberInJson) {
    EXPECT_THAT(written(makeJsonText(), 415),
                EndsWith("\"address\":\"R101\",\"value\":21.5,\"unit\":\"\xC2\xB0"
                         "C\",\"raw\":415,\"quality\":\"good\"}"));
    std::string text;
    makeJsonText()->append(text, ref(), PointState());
    EXPECT_THAT(text, HasSubstr("\"value\":null,\"unit\":\"\xC2\xB0"
                                "C\",\"raw\":null,\"quality\":\"never read\"}"));
}

TEST_F(EngineeringOutput, HasTheUnitInTheLastColumnOfCsv) {
    EXPECT_STREQ(changeCsvHeader, "time,channel,rtu,id,name,address,value,quality,unit");
    EXPECT_THAT(written(makeCsvText(), 415), EndsWith(",3,LEVEL,R101,21.5,good,\xC2\xB0"
                                                      "C"));
}

TEST_F(EngineeringOutput, NeverShowsAGoodNumberWhereThereIsNone) {
    makeIeee();
    const double notANumber = 0x7FC0'0000;
    EXPECT_THAT(written(makeJsonText(), notANumber, PointQuality::Bad),
                HasSubstr("\"value\":null,\"raw\":2143289344,\"quality\":\"bad\"}"));
    EXPECT_THAT(written(makeLineText(), notANumber, PointQuality::Bad), EndsWith(" = NaN  bad"));
    EXPECT_THAT(written(makeCsvText(), notANumber, PointQuality::Bad), EndsWith(",R101,NaN,bad,"));
    EXPECT_THAT(toldOf({0x3F80'0000, notANumber, notANumber, 0x4000'0000}), ElementsAre("1", "NaN bad", "2"));
}

TEST_F(EngineeringOutput, OfOneElementIsAsItWasAskedFor) {
    makeIeee();
    EXPECT_EQ(readingAsText(level(), 0x3FC0'0000), "R101:ieee = 1.5");
    EXPECT_EQ(readingAsJson(level(), {0x3FC0'0000, readAt, readAt, PointQuality::Good}),
              R"({"address":"R101:ieee","value":1.5,"raw":1069547520,"time":"2023-11-14T22:13:20.125Z",)"
              R"("quality":"good"})");
    EXPECT_EQ(readingAsJson(level(), {0x7FC0'0000, readAt, readAt, PointQuality::Bad}),
              R"({"address":"R101:ieee","value":null,"raw":2143289344,"time":"2023-11-14T22:13:20.125Z",)"
              R"("quality":"bad"})");
}

TEST_F(EngineeringOutput, HasAColumnForUnitsInTheTable) {
    level().description = std::make_shared<const std::string>("Water in the well");
    const PointTable points(site);
    const PointColumns columns(points, false);
    const PointState state{415, readAt, readAt, PointQuality::Good};
    EXPECT_EQ(columns.line(ref(), state, readAt, 60).text, "  LEVEL     R101              21.5 \xC2\xB0"
                                                           "C  good           0.0 s");
    EXPECT_THAT(columns.line(ref(), state, readAt, 100).text, EndsWith("0.0 s  Water in the well"));
    EXPECT_THAT(columns.line(ref(), state, readAt, 70).text, EndsWith("0.0 s")) << "half of it tells nothing";
}

TEST_F(EngineeringOutput, OfATableWithoutUnitsHasNoColumnForThem) {
    level().engineering = nullptr;
    const PointTable points(site);
    EXPECT_EQ(
        PointColumns(points, false).line(ref(), {12, readAt, readAt, PointQuality::Good}, readAt, 60).text,
        "  LEVEL     R101                12  good           0.0 s");
}

TEST_F(EngineeringOutput, TellsNoChangeWithinTheDeadband) {
    setDeadband(0.5);
    EXPECT_THAT(toldOf({300, 304, 296, 305, 300}), ElementsAre("10", "10.5", "10"));
    EXPECT_THAT(toldOf({300, 304}), ElementsAre("10"));
    EXPECT_EQ(shownAtLast, "10.4") << "what is the case is shown all the same";
}

TEST_F(EngineeringOutput, TellsAValueThatDriftsInSmallSteps) {
    setDeadband(0.5);
    EXPECT_THAT(toldOf({300, 302, 304, 306, 308, 310, 312}), ElementsAre("10", "10.6", "11.2"));
}

TEST_F(EngineeringOutput, TellsEveryChangeOfQualityWhateverTheDeadband) {
    setDeadband(100);
    EXPECT_THAT(toldOf({300, failed, 301, failed}), ElementsAre("10", "10 bad", "10.1", "10.1 bad"));
}

// 0.57 - 0 is a little less than 57 x 0.01 in double precision.
TEST_F(EngineeringOutput, TellsAChangeThatIsJustTheDeadband) {
    Engineering engineering;
    engineering.scaling = Scaling(0.01, 0);
    for (int steps = 1; steps <= 100; ++steps) {
        engineering.deadband = steps / 100.0;
        level().engineering = std::make_shared<const Engineering>(engineering);
        for (const double from : {0.0, 7.0, 1'000'000.0}) {
            EXPECT_EQ(toldOf({from, from + steps}).size(), 2U) << steps << ' ' << from;
            EXPECT_EQ(toldOf({from, from + steps - 1}).size(), 1U) << steps << ' ' << from;
        }
    }
}
