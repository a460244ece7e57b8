// Every kind of command, through the host and the plug-in, on every kind of line.

#include "CommandedPlant.h"

#include <QDateTime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

using Commands = EveryLine;
using Halvex::DriverErrorResult;
using host::SetPoint;
using host::SetPoints;
using host::SwitchPoint;
using host::SynchroniseClock;
using sim::Media;
using namespace std::chrono_literals;

ON_EVERY_LINE(Commands);

namespace {

constexpr auto success = DriverErrorResult::Success;

int fromBcd(std::uint8_t byte) {
    return (byte >> 4) * 10 + (byte & 0x0F);
}

QDateTime timeOf(const sim::ClockRecord& record) {
    const auto& bytes = record.bytes;
    return {QDate(2000 + fromBcd(bytes[2]), fromBcd(bytes[3]), fromBcd(bytes[4])),
            QTime(fromBcd(bytes[5]), fromBcd(bytes[6]), fromBcd(bytes[7]))};
}

} // namespace

TEST_P(Commands, SwitchOutputsAndFlags) {
    CommandedPlant plant(GetParam());
    plant.addPoint(1, {'O', 40});
    plant.addPoint(2, {'F', 7'000});
    plant.start();
    EXPECT_EQ(plant.carryOut(SwitchPoint{1, true}), success);
    EXPECT_EQ(plant.carryOut(SwitchPoint{2, true}), success);
    EXPECT_EQ(plant.memory().get(Media::Outputs, 40), 1U);
    EXPECT_EQ(plant.memory().get(Media::Flags, 7'000), 1U);
    EXPECT_TRUE(Plant::eventually([&] { return plant.reads(1, 1) && plant.reads(2, 1); }));
    EXPECT_EQ(plant.carryOut(SwitchPoint{1, false}), success);
    EXPECT_EQ(plant.memory().get(Media::Outputs, 40), 0U);
    EXPECT_EQ(plant.memory().get(Media::Flags, 7'000), 1U);
}

TEST_P(Commands, SwitchTheSecondAddressOnAndTheFirstOneOff) {
    CommandedPlant plant(GetParam());
    host::Point& valve = plant.addPoint(1, {'O', 40});
    valve.secondAddress = {'F', 41};
    plant.memory().set(Media::Outputs, 40, 1);
    plant.start();
    EXPECT_EQ(plant.carryOut(SwitchPoint{1, true}), success);
    EXPECT_EQ(plant.memory().get(Media::Flags, 41), 1U);
    EXPECT_EQ(plant.memory().get(Media::Outputs, 40), 1U);
    EXPECT_EQ(plant.carryOut(SwitchPoint{1, false}), success);
    EXPECT_EQ(plant.memory().get(Media::Outputs, 40), 0U);
    EXPECT_EQ(plant.memory().get(Media::Flags, 41), 1U);
}

TEST_P(Commands, SetRegistersTimersAndCounters) {
    CommandedPlant plant(GetParam());
    plant.addPoint(1, {'R', 10});
    plant.addPoint(2, {'R', 11}).isFloat = true;
    plant.addPoint(3, {'T', 12});
    plant.addPoint(4, {'C', 13});
    plant.start();
    EXPECT_EQ(plant.carryOut(SetPoint{1, -123456}), success);
    EXPECT_EQ(plant.carryOut(SetPoint{2, -12.5}), success);
    EXPECT_EQ(plant.carryOut(SetPoint{3, 2147483646}), success);
    EXPECT_EQ(plant.carryOut(SetPoint{4, 2147483647}), success);
    EXPECT_EQ(plant.memory().get(Media::Registers, 10), static_cast<std::uint32_t>(-123456));
    EXPECT_EQ(plant.memory().getFloat(Media::Registers, 11), -12.5);
    EXPECT_EQ(plant.memory().get(Media::Timers, 12), 2147483646U);
    EXPECT_EQ(plant.memory().get(Media::Counters, 13), 2147483647U);
    EXPECT_TRUE(Plant::eventually([&] {
        return plant.reads(1, -123456) && plant.reads(2, -12.5) && plant.reads(3, 2147483646) &&
               plant.reads(4, 2147483647);
    }));
}

TEST_P(Commands, AFloatIsSetToZero) {
    CommandedPlant plant(GetParam());
    plant.addPoint(1, {'R', 10}).isFloat = true;
    plant.memory().setFloat(Media::Registers, 10, 3.5);
    plant.start();
    EXPECT_EQ(plant.carryOut(SetPoint{1, 0}), success);
    EXPECT_EQ(plant.memory().getFloat(Media::Registers, 10), 0.0);
    EXPECT_TRUE(Plant::eventually([&] { return plant.reads(1, 0); }));
}

TEST_P(Commands, APulseIsReleasedAfterItsWidth) {
    constexpr std::chrono::milliseconds width = 1s;
    CommandedPlant plant(GetParam());
    plant.addPoint(1, {'O', 40}).pulseMs = static_cast<unsigned>(width.count());
    plant.start();
    const sim::Clock::time_point commanded = sim::Clock::now();
    EXPECT_EQ(plant.carryOut(SwitchPoint{1, true}), success);
    EXPECT_EQ(plant.memory().get(Media::Outputs, 40), 1U);
    ASSERT_TRUE(Plant::eventually([&] { return plant.memory().get(Media::Outputs, 40) == 0; }));

    // On, and by the release on once more and then off. Clocks of different kinds may differ by a tick.
    const auto writes = plant.controllers().counts(CommandedPlant::lineId).writes;
    ASSERT_GE(writes.size(), 3U);
    EXPECT_EQ(writes[0].value, 1U);
    EXPECT_EQ(writes[1].value, 1U);
    EXPECT_EQ(writes[2].value, 0U);
    EXPECT_GE(writes[2].time - commanded, width - 20ms);
    EXPECT_GE(writes[2].time - writes[0].time,
              width / 2); // the width runs from the command, not the telegram
}

TEST_P(Commands, TheClockIsSetOnASerialLineAndOutOfReachOnEthernet) {
    CommandedPlant plant(GetParam());
    plant.addPoint(1, {'R', 10});
    plant.start();
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
    if (GetParam() == LineType::Ethernet) {
        EXPECT_THAT(plant.commands().submit(CommandedPlant::command(SynchroniseClock{}),
                                            [](const host::CommandEnd&) {}),
                    testing::HasSubstr("not possible on Ethernet"));
        return;
    }
    EXPECT_EQ(plant.carryOut(SynchroniseClock{}), success);
    const auto settings = plant.controllers().counts(CommandedPlant::lineId).clockSettings;
    ASSERT_EQ(settings.size(), 1U);
    EXPECT_EQ(settings[0].station, CommandedPlant::station);
    EXPECT_GE(timeOf(settings[0]), before);
    EXPECT_LE(timeOf(settings[0]), QDateTime::currentDateTime());
}

TEST_P(Commands, AControllerThatRefusesMakesItTheResult) {
    sim::Options small;
    small.sizes.set(Media::Outputs, 40);
    CommandedPlant plant(GetParam(), small);
    plant.addPoint(1, {'O', 39}).secondAddress = {'O', 40};
    plant.start();
    EXPECT_EQ(plant.carryOut(SwitchPoint{1, true}), DriverErrorResult::BadData);
    EXPECT_EQ(plant.carryOut(SwitchPoint{1, false}), success);
}

TEST_P(Commands, ASilentControllerEndsThemInFailure) {
    CommandedPlant plant(GetParam());
    plant.addPoint(1, {'R', 10});
    plant.start();
    plant.controllers().silence(CommandedPlant::lineId, CommandedPlant::station, true);
    const DriverErrorResult result = plant.carryOut(SetPoint{1, 5});
    EXPECT_TRUE(result == DriverErrorResult::TimeOut || result == DriverErrorResult::ChannelError);
    EXPECT_EQ(plant.memory().get(Media::Registers, 10), 0U);
}

// Of a list each value lands at its own element, and nothing else changes.
TEST_P(Commands, ListsOfAllKindsLandAtTheirElements) {
    struct Medium {
        char letter;
        Media media;
        unsigned highest;
    };
    const Medium mediaList[] = {
        {'R', Media::Registers, 150}, {'T', Media::Timers, 90}, {'C', Media::Counters, 90}};
    std::mt19937 random(20'240'607);
    const auto oneOf = [&](unsigned many) { return random() % many == 0; };

    CommandedPlant plant(GetParam());
    plant.pollSeldom();
    unsigned nextPoint = 1;
    for (const Medium& medium : mediaList)
        for (unsigned element = 0; element <= medium.highest; ++element)
            plant.addPoint(nextPoint++, {medium.letter, element}).isFloat =
                medium.media == Media::Registers && element > 40 && oneOf(12);
    const std::vector<host::Point> points = plant.rtu().points;
    std::shuffle(plant.rtu().points.begin(), plant.rtu().points.end(), random);
    for (host::Point& point : plant.rtu().points) // ids in no order of the elements
        point.id = nextPoint++;
    plant.start();

    std::map<std::pair<char, unsigned>, std::uint32_t> words;
    std::map<unsigned, double> floats;
    for (int round = 0; round < 12; ++round) {
        SetPoints list;
        // Long runs with gaps: many neighbours in the even rounds, few in the odd ones.
        const unsigned gap = round % 2 == 0 ? 40 : 3;
        for (const host::Point& point : plant.rtu().points) {
            if (oneOf(gap))
                continue;
            const auto value =
                static_cast<double>(random() % 2'000'000) - (point.address.media == 'R' ? 1e6 : 0);
            list.values[point.id] = !point.isFloat ? value : oneOf(4) ? 0 : value / 8;
            if (point.isFloat)
                floats[point.address.number] = list.values[point.id];
            else
                words[{point.address.media, point.address.number}] =
                    static_cast<std::uint32_t>(static_cast<std::int64_t>(value));
        }
        ASSERT_EQ(plant.carryOut(list), success);
        for (const Medium& medium : mediaList)
            for (unsigned element = 0; element <= medium.highest + 100; ++element) {
                if (medium.media == Media::Registers && floats.count(element) > 0)
                    ASSERT_EQ(plant.memory().getFloat(medium.media, element), floats[element])
                        << 'R' << element << ", round " << round;
                else
                    ASSERT_EQ(plant.memory().get(medium.media, element), (words[{medium.letter, element}]))
                        << medium.letter << element << ", round " << round;
            }
    }
}
