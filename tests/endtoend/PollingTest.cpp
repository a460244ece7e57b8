#include "EveryLine.h"

using Polling = EveryLine;
using Halvex::PointDataType;
using sim::Media;

ON_EVERY_LINE(Polling);

TEST_P(Polling, EveryMediaReachesItsPoint) {
    Plant plant(GetParam(), {5});
    sim::Memory& memory = plant.memory(5);
    memory.set(Media::Inputs, 10, 1);
    memory.set(Media::Outputs, 20, 1);
    memory.set(Media::Flags, 30, 1);
    memory.set(Media::Registers, 40, 0xFFFFFFFE);
    memory.setFloat(Media::Registers, 50, -12.5);
    memory.set(Media::Timers, 60, 0xFFFFFFFF);
    memory.set(Media::Counters, 70, 0xFFFFFFFF);
    plant.addStatusPoint(5, 1, QStringLiteral("I10"));
    plant.addStatusPoint(5, 2, QStringLiteral("O20"));
    plant.addStatusPoint(5, 3, QStringLiteral("F30"));
    plant.addStatusPoint(5, 4, QStringLiteral("I11"));
    plant.addAnalogPoint(5, 5, QStringLiteral("R40"));
    plant.addAnalogPoint(5, 6, QStringLiteral("R50"), PointDataType::Float);
    plant.addAnalogPoint(5, 7, QStringLiteral("T60"));
    plant.addAnalogPoint(5, 8, QStringLiteral("C70"));
    plant.start();

    ASSERT_TRUE(Plant::eventually([&] { return plant.allPointsAre(5, PointQuality::Good); }));
    auto points = plant.points(5);
    EXPECT_EQ(points[1].value, 1);
    EXPECT_EQ(points[2].value, 1);
    EXPECT_EQ(points[3].value, 1);
    EXPECT_EQ(points[4].value, 0);
    EXPECT_EQ(points[5].value, -2);
    EXPECT_EQ(points[6].value, -12.5);
    EXPECT_EQ(points[7].value, 4294967295.0);
    EXPECT_EQ(points[8].value, -1);
}

TEST_P(Polling, ChangedValuesFollow) {
    Plant plant(GetParam(), {5});
    plant.addAnalogPoint(5, 1, QStringLiteral("R7"));
    plant.addStatusPoint(5, 2, QStringLiteral("F7"));
    plant.start();
    for (const unsigned value : {100U, 101U, 0U}) {
        plant.memory(5).set(Media::Registers, 7, value);
        plant.memory(5).set(Media::Flags, 7, value & 1);
        EXPECT_TRUE(Plant::eventually([&] {
            auto points = plant.points(5);
            return points[1].quality == PointQuality::Good && points[1].value == value &&
                   points[2].quality == PointQuality::Good && points[2].value == (value & 1);
        })) << "value "
            << value;
    }
}

TEST_P(Polling, FiveThousandRegistersAndFiveThousandFlagsOfOneRtu) {
    constexpr unsigned count = 5000;
    constexpr unsigned firstFlagPoint = 100'000;
    Plant plant(GetParam(), {5});
    plant.setScanPeriods({60'000, 500, 500});
    for (unsigned i = 0; i < count; ++i) {
        plant.memory(5).set(Media::Registers, i, i * 31 + 7);
        plant.memory(5).set(Media::Flags, i, i % 3 == 0 ? 1 : 0);
        plant.addAnalogPoint(5, i, QStringLiteral("R%1").arg(i));
        plant.addStatusPoint(5, firstFlagPoint + i, QStringLiteral("F%1").arg(i));
    }
    plant.start();

    ASSERT_TRUE(Plant::eventually([&] { return plant.allPointsAre(5, PointQuality::Good); }));
    auto points = plant.points(5);
    ASSERT_EQ(points.size(), 2 * count);
    for (unsigned i = 0; i < count; ++i) {
        ASSERT_EQ(points[i].value, i * 31 + 7) << "R" << i;
        ASSERT_EQ(points[firstFlagPoint + i].value, i % 3 == 0 ? 1 : 0) << "F" << i;
    }
}

TEST_P(Polling, ThreeRtusOfOneLineAreKeptApart) {
    Plant plant(GetParam(), {1, 2, 3});
    for (const int station : {1, 2, 3}) {
        plant.memory(station).set(Media::Registers, 9, static_cast<std::uint32_t>(station * 1000));
        plant.addAnalogPoint(station, 1, QStringLiteral("R9"));
    }
    plant.start();
    for (const int station : {1, 2, 3}) {
        ASSERT_TRUE(Plant::eventually([&] { return plant.allPointsAre(station, PointQuality::Good); }));
        EXPECT_EQ(plant.points(station)[1].value, station * 1000);
    }
}

TEST_P(Polling, AnRtuCountsItsAnswersAndRoundTrips) {
    Plant plant(GetParam(), {5});
    plant.addAnalogPoint(5, 1, QStringLiteral("R1"));
    plant.start();
    ASSERT_TRUE(Plant::eventually([&] { return plant.rtu(5).GetRtuStatus().answers >= 3; }));
    const RtuStatus status = plant.rtu(5).GetRtuStatus();
    EXPECT_EQ(status.requests, status.answers);
    EXPECT_GT(status.lastRoundTrip.count(), 0);
    EXPECT_GE(status.slowestRoundTrip, status.lastRoundTrip);
}
