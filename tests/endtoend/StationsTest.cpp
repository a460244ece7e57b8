// Controllers that can do less than the driver asks, lines with dead stations, lines with losses: the host
// and the plug-in's file against simulated controllers.

#include "StationPlant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

using host::SetPoint;
using host::SetPoints;
using sim::Media;
using testing::Contains;
using testing::HasSubstr;
using namespace std::chrono_literals;

namespace {

constexpr int lineId = StationPlant::lineId;
constexpr int meter = 5;

sim::Abilities lacking(const std::vector<unsigned>& registers) {
    sim::Abilities abilities;
    for (const unsigned number : registers)
        abilities.absent.insert({Media::Registers, number});
    return abilities;
}

bool eventually(const std::function<bool()>& condition) {
    return Plant::eventually(condition);
}

// Waits until the RTU has ended `more` polls more.
bool pollsEnd(StationPlant& plant, int station, quint64 more) {
    const quint64 before = plant.figures(station).status.requests;
    return eventually([&] { return plant.figures(station).status.requests >= before + more; });
}

void fillRegisters(StationPlant& plant, int station, unsigned count) {
    for (unsigned number = 0; number < count; ++number)
        plant.memory(station).set(Media::Registers, number, number + 1);
}

class LimitedController : public EveryLine {};

} // namespace

ON_EVERY_LINE(LimitedController);

TEST_P(LimitedController, LeavesAllButTheAbsentElementsGood) {
    StationPlant plant(GetParam(), {meter});
    plant.addPoints(meter, 'R', 0, 1'000);
    plant.setScan(1h, 300ms);
    fillRegisters(plant, meter, 1'000);
    plant.controllers().limit(lineId, meter, lacking({17, 205, 999}));
    plant.start();
    ASSERT_TRUE(pollsEnd(plant, meter, 2));
    EXPECT_EQ(plant.countPoints(meter, PointQuality::Good), 997U);
    EXPECT_EQ(plant.countPoints(meter, PointQuality::Refused), 3U);
    EXPECT_EQ(plant.wrongValue(meter), "");
    EXPECT_THAT(
        plant.host().takeLineMessages(),
        Contains(HasSubstr("the controller does not have R17, R205, R999: their points are refused")));

    const std::uint64_t refusals = plant.refusals(meter);
    ASSERT_TRUE(pollsEnd(plant, meter, 1));
    const std::uint64_t telegrams = plant.telegrams(meter);
    ASSERT_TRUE(pollsEnd(plant, meter, 3));
    EXPECT_LE(plant.telegrams(meter) - telegrams, 4U * 10U) << "three polls, and what has begun since";
    EXPECT_EQ(plant.refusals(meter), refusals);
}

TEST_P(LimitedController, IsAskedForNoMoreThanItTakes) {
    StationPlant plant(GetParam(), {meter});
    plant.addPoints(meter, 'R', 0, 105);
    plant.addPoints(meter, 'F', 0, 30);
    plant.addPoints(meter, 'R', 110, 3);
    host::Rtu& rtu = plant.rtu(meter);
    rtu.limits.readWords = 20;
    rtu.limits.readBits = 8;
    rtu.limits.gap = 5;
    plant.setScan(1h, 100ms);
    fillRegisters(plant, meter, 200);
    sim::Abilities abilities;
    abilities.readWords = 20;
    abilities.readBits = 8;
    plant.controllers().limit(lineId, meter, abilities);
    plant.start();
    ASSERT_TRUE(eventually([&] { return plant.countPoints(meter, PointQuality::Good) == 138; }));
    ASSERT_TRUE(pollsEnd(plant, meter, 4));
    EXPECT_EQ(plant.wrongValue(meter), "");
    EXPECT_EQ(plant.refusals(meter), 0U);
    EXPECT_EQ(plant.figures(meter).status.errors + plant.figures(meter).status.timeOuts, 0U);
}

TEST_P(LimitedController, ReadsAgainAtAnIntegrityPollWhatItDidNotHaveBefore) {
    StationPlant plant(GetParam(), {meter});
    plant.addPoints(meter, 'R', 0, 20);
    plant.setScan(300ms, 100ms);
    fillRegisters(plant, meter, 20);
    plant.controllers().limit(lineId, meter, lacking({7, 8}));
    plant.start();
    ASSERT_TRUE(eventually([&] { return plant.countPoints(meter, PointQuality::Refused) == 2; }));
    plant.controllers().limit(lineId, meter, {});
    ASSERT_TRUE(eventually([&] { return plant.countPoints(meter, PointQuality::Good) == 20; }));
    EXPECT_EQ(plant.wrongValue(meter), "");
}

TEST_P(LimitedController, IsReadInPartsWhenNobodyToldItsLimit) {
    StationPlant plant(GetParam(), {meter});
    plant.addPoints(meter, 'R', 0, 200);
    plant.setScan(1h, 200ms);
    fillRegisters(plant, meter, 200);
    sim::Abilities abilities;
    abilities.readWords = 20;
    plant.controllers().limit(lineId, meter, abilities);
    plant.start();
    ASSERT_TRUE(eventually([&] { return plant.countPoints(meter, PointQuality::Good) == 200; }));
    ASSERT_TRUE(pollsEnd(plant, meter, 4));
    const std::uint64_t refusals = plant.refusals(meter);
    ASSERT_TRUE(pollsEnd(plant, meter, 3));
    EXPECT_EQ(plant.refusals(meter), refusals);
    EXPECT_EQ(plant.countPoints(meter, PointQuality::Good), 200U);
    EXPECT_EQ(plant.wrongValue(meter), "");
}

TEST_P(LimitedController, TakesCommandsForPointsOfBothDriverRtus) {
    StationPlant plant(GetParam(), {meter});
    plant.addPoints(meter, 'R', 0, 10);
    plant.rtu(meter).points[5].isFloat = true;
    plant.rtu(meter).limits.readWords = 2;
    plant.rtu(meter).limits.writeWords = 1;
    plant.setScan(1h, 100ms);
    sim::Abilities abilities;
    abilities.readWords = 2;
    abilities.writeWords = 1;
    plant.controllers().limit(lineId, meter, abilities);
    plant.start();
    ASSERT_TRUE(eventually([&] { return plant.countPoints(meter, PointQuality::Good) == 10; }));
    const auto carryOut = [&](const host::CommandAction& action) {
        return plant.host().carryOut({lineId, meter, action});
    };
    EXPECT_EQ(carryOut(SetPoints{{{0, 10}, {1, 11}, {2, 12}, {3, 13}}}), Halvex::DriverErrorResult::Success);
    EXPECT_EQ(carryOut(SetPoint{5, 1.5}), Halvex::DriverErrorResult::Success);
    for (unsigned number = 0; number < 4; ++number)
        EXPECT_EQ(plant.memory(meter).get(Media::Registers, number), 10 + number);
    EXPECT_EQ(plant.memory(meter).getFloat(Media::Registers, 5), 1.5);
    EXPECT_EQ(carryOut(SetPoint{5, 0}), Halvex::DriverErrorResult::Success);
    EXPECT_EQ(plant.memory(meter).get(Media::Registers, 5), 0U);
    EXPECT_EQ(plant.refusals(meter), 0U);
}

// Whatever the limits and the points are: what the host was told is never overstepped, and in the end every
// point that is there has its value.
TEST(LimitedControllers, AreReadRightWhateverTheirLimitsAndPoints) {
    std::mt19937 random(20'261'122);
    const auto number = [&](unsigned lowest, unsigned highest) {
        return std::uniform_int_distribution<unsigned>(lowest, highest)(random);
    };
    for (int round = 0; round < 12; ++round) {
        StationPlant plant(LineType::Ethernet, {meter});
        const char media[] = {'R', 'F', 'T', 'I'};
        for (const char one : media) {
            unsigned first = number(0, 30);
            for (unsigned runs = number(1, 3); runs > 0; --runs) {
                const unsigned count = number(1, 140);
                plant.addPoints(meter, one, first, count);
                first += count + number(1, 12);
            }
        }
        sim::Abilities abilities;
        abilities.readWords = number(1, 31);
        abilities.readBits = number(1, 127);
        host::Rtu& rtu = plant.rtu(meter);
        rtu.limits.readWords = abilities.readWords;
        rtu.limits.readBits = abilities.readBits;
        rtu.limits.gap = number(0, 10);
        const bool lacksElements = round % 2 == 1;
        std::size_t absent = 0;
        for (const host::Point& point : rtu.points) {
            plant.memory(meter).set(*sim::mediaOf(point.address.media), point.address.number, number(0, 1));
            if (lacksElements && number(0, 60) == 0) {
                abilities.absent.insert({*sim::mediaOf(point.address.media), point.address.number});
                ++absent;
            }
        }
        plant.controllers().limit(lineId, meter, abilities);
        plant.setScan(1h, 100ms);
        const std::size_t points = rtu.points.size();
        plant.start();
        ASSERT_TRUE(eventually([&] {
            return plant.countPoints(meter, PointQuality::Good) == points - absent &&
                   plant.countPoints(meter, PointQuality::Refused) == absent;
        })) << "round "
            << round;
        EXPECT_EQ(plant.wrongValue(meter), "") << "round " << round;
        if (!lacksElements) {
            EXPECT_EQ(plant.refusals(meter), 0U) << "round " << round;
        }
        plant.stop();
    }
}

namespace {

// Eight stations, the first six of which are dead. Time-outs, periods and pauses are a tenth of what is
// usual.
class LineWithDeadStations : public EveryLine {
protected:
    LineWithDeadStations() : plant(GetParam(), {1, 2, 3, 4, 5, 6, 7, 8}) {
        for (int station = 1; station <= 8; ++station) {
            plant.addPoints(station, 'R', 0, 10);
            plant.addPoints(station, 'F', 0, 3);
            plant.rtu(station).timeout = 100ms;
            plant.rtu(station).retry = {500ms, 6s};
            plant.controllers().silence(lineId, station, station <= 6);
        }
        plant.setScan(6s, 200ms);
    }

    StationPlant plant;
};

} // namespace

ON_EVERY_LINE(LineWithDeadStations);

TEST_P(LineWithDeadStations, AsksTheLiveOnesAlmostAsOftenAsAlone) {
    plant.start();
    // The dead ones cost three time-outs each, and then a try each after half a second, a second and so on.
    ASSERT_TRUE(eventually([&] {
        for (int station = 1; station <= 6; ++station)
            if (plant.telegrams(station) < 6)
                return false;
        return true;
    }));
    const quint64 before = plant.figures(8).status.answers;
    std::uint64_t dead = 0;
    for (int station = 1; station <= 6; ++station)
        dead += plant.telegrams(station);
    ASSERT_TRUE(eventually([&] { return plant.figures(8).status.answers >= before + 20; }));
    std::uint64_t deadSince = 0;
    for (int station = 1; station <= 6; ++station)
        deadSince += plant.telegrams(station);
    // Twenty polls are two seconds and more. The pauses have grown to eight times that of the beginning.
    EXPECT_LE(deadSince - dead, 12U);
    EXPECT_EQ(plant.countPoints(8, PointQuality::Good), 13U);
    EXPECT_EQ(plant.countPoints(1, PointQuality::Good), 0U);
}

TEST_P(LineWithDeadStations, AsksOneThatHasComeBackForEverything) {
    plant.start();
    ASSERT_TRUE(eventually([&] { return plant.telegrams(1) >= 4; }));
    plant.controllers().silence(lineId, 1, false);
    ASSERT_TRUE(eventually([&] { return plant.countPoints(1, PointQuality::Good) == 13; }));
    const quint64 answers = plant.figures(1).status.answers;
    ASSERT_TRUE(eventually([&] { return plant.figures(1).status.answers >= answers + 4; }));
    EXPECT_TRUE(plant.figures(1).status.connected);
}

TEST_P(LineWithDeadStations, SendsCommandsToOneThatRestsAtOnce) {
    plant.rtu(1).retry = {1h, 1h};
    plant.start();
    ASSERT_TRUE(eventually([&] { return plant.telegrams(1) >= 3 && !plant.figures(1).status.connected; }));
    plant.controllers().silence(lineId, 1, false);
    EXPECT_EQ(plant.host().carryOut({lineId, 1, SetPoint{4, 77}}), Halvex::DriverErrorResult::Success);
    EXPECT_EQ(plant.memory(1).get(Media::Registers, 4), 77U);
    // And it is polled again from then on.
    ASSERT_TRUE(eventually([&] { return plant.countPoints(1, PointQuality::Good) == 13; }));
}

TEST_P(LineWithDeadStations, AsksOneThatRestsWhenSomebodyWantsToKnow) {
    plant.rtu(1).retry = {1h, 1h};
    plant.start();
    ASSERT_TRUE(eventually([&] { return plant.telegrams(1) >= 3 && !plant.figures(1).status.connected; }));
    plant.controllers().silence(lineId, 1, false);
    ASSERT_TRUE(eventually([&] {
        plant.host().hostRuntime().requestPoll(lineId, 1);
        return plant.countPoints(1, PointQuality::Good) == 13;
    }));
}

// A UDP line is never gone: it opens whoever is at its other end.
TEST(SerialLineWithADeadStation, AsksItAfreshWhenTheLineItselfWasGone) {
    StationPlant plant(LineType::SerialDataMode, {1, 8});
    for (const int station : {1, 8}) {
        plant.addPoints(station, 'R', 0, 13);
        plant.rtu(station).timeout = 100ms;
    }
    plant.setScan(6s, 200ms);
    plant.controllers().silence(lineId, 1, true);
    plant.rtu(1).retry = {1h, 1h};
    plant.start();
    ASSERT_TRUE(eventually([&] { return plant.telegrams(1) >= 3 && !plant.figures(1).status.connected; }));
    plant.controllers().cut(lineId);
    ASSERT_TRUE(eventually([&] { return plant.countPoints(8, PointQuality::Bad) == 13; }));
    plant.controllers().silence(lineId, 1, false);
    ASSERT_EQ(plant.controllers().restore(lineId), "");
    ASSERT_TRUE(eventually([&] { return plant.countPoints(1, PointQuality::Good) == 13; }));
}

namespace {

class LineWithLosses : public EveryLine {};

} // namespace

ON_EVERY_LINE(LineWithLosses);

TEST_P(LineWithLosses, FailsFewerThanOnePollOfAHundred) {
    sim::Options options;
    options.faults.drop = 0.03;
    // After a wrong checksum the driver drains a serial line for five seconds.
    options.faults.crc = GetParam() == LineType::Ethernet ? 0.01 : 0;
    options.faults.duplicate = 0.01;
    options.faults.shorten = 0.01;
    options.faults.nak = 0.005;
    // Beside another station this one would rest if its losses were taken for silence.
    StationPlant plant(GetParam(), {meter, meter + 1}, options);
    for (unsigned first = 0; first < 100; first += 20)
        plant.addPoints(meter, 'R', first, 3); // five telegrams
    plant.addPoints(meter + 1, 'R', 0, 3);
    fillRegisters(plant, meter, 200);
    plant.rtu(meter).timeout = 40ms;
    plant.rtu(meter + 1).timeout = 40ms;
    plant.setScan(1h, 40ms);
    plant.start();
    ASSERT_TRUE(eventually([&] { return plant.figures(meter).status.requests >= 200; }));
    const host::RtuFigures figures = plant.figures(meter);
    const quint64 failed = figures.status.requests - figures.status.answers;
    EXPECT_LT(failed * 100, figures.status.requests);
    EXPECT_GT(figures.attempts, figures.status.requests * 11 / 10);
    EXPECT_EQ(plant.wrongValue(meter), "");
}

TEST_P(LineWithLosses, KeepsValuesGoodWhileAttemptsAreLeft) {
    StationPlant plant(GetParam(), {meter});
    plant.addPoints(meter, 'R', 0, 3);
    plant.addPoints(meter, 'R', 20, 3);
    fillRegisters(plant, meter, 200);
    plant.rtu(meter).timeout = 100ms;
    plant.setScan(1h, 1h);
    plant.start();
    ASSERT_TRUE(eventually([&] { return plant.countPoints(meter, PointQuality::Good) == 6; }));
    plant.takeChanges();
    // Of the next poll the first answer is lost, and those to what is asked again are not.
    const quint64 attempts = plant.figures(meter).attempts;
    plant.controllers().silence(lineId, meter, true);
    plant.host().hostRuntime().requestPoll(lineId, meter);
    ASSERT_TRUE(eventually([&] { return plant.figures(meter).attempts > attempts; }));
    plant.controllers().silence(lineId, meter, false);
    ASSERT_TRUE(eventually([&] { return plant.figures(meter).status.requests >= 2; }));
    EXPECT_EQ(plant.takeChanges().size(), 0U);
    EXPECT_EQ(plant.figures(meter).status.answers, plant.figures(meter).status.requests);
}

TEST_P(LineWithLosses, TurnsValuesBadWhenTheLastAttemptHasFailed) {
    StationPlant plant(GetParam(), {meter});
    plant.addPoints(meter, 'R', 0, 3);
    plant.rtu(meter).timeout = 50ms;
    plant.setScan(1h, 200ms);
    plant.start();
    ASSERT_TRUE(eventually([&] { return plant.countPoints(meter, PointQuality::Good) == 3; }));
    plant.controllers().silence(lineId, meter, true);
    ASSERT_TRUE(eventually([&] { return plant.countPoints(meter, PointQuality::Bad) == 3; }));
    plant.controllers().silence(lineId, meter, false);
    ASSERT_TRUE(eventually([&] { return plant.countPoints(meter, PointQuality::Good) == 3; }));
}
