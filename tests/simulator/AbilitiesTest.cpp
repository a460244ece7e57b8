#include "Bench.h"

#include <Telegram.h>

#include <gtest/gtest.h>

using sim::Abilities;
using sim::Media;

namespace {

// Reads `count` elements from `first` of station 5.
std::string readTelegram(std::uint8_t command, unsigned first, unsigned count) {
    sim::Bytes telegram{0xB5,
                        0x00,
                        5,
                        command,
                        static_cast<std::uint8_t>(count - 1),
                        static_cast<std::uint8_t>(first >> 8),
                        static_cast<std::uint8_t>(first)};
    const std::uint16_t checksum = sim::checksum(telegram.data(), telegram.size());
    telegram.push_back(static_cast<std::uint8_t>(checksum >> 8));
    telegram.push_back(static_cast<std::uint8_t>(checksum));
    return toHex(telegram);
}

bool isRefused(const std::string& answer) {
    return answer.substr(0, 11) == "B5 02 00 01";
}

} // namespace

TEST(Abilities, RefuseMoreWordsThanTheControllerTakes) {
    Bench bench(sim::Framing::DataMode);
    Abilities abilities;
    abilities.readWords = 20;
    ASSERT_TRUE(bench.line.limit(5, abilities));
    EXPECT_FALSE(isRefused(bench.ask(readTelegram(6, 0, 20))));
    EXPECT_TRUE(isRefused(bench.ask(readTelegram(6, 0, 21))));
    EXPECT_TRUE(isRefused(bench.ask(readTelegram(7, 0, 21))));
    EXPECT_FALSE(isRefused(bench.ask(readTelegram(2, 0, 21))));
}

TEST(Abilities, RefuseMoreBitsThanTheControllerTakes) {
    Bench bench(sim::Framing::DataMode);
    Abilities abilities;
    abilities.readBits = 8;
    ASSERT_TRUE(bench.line.limit(5, abilities));
    EXPECT_FALSE(isRefused(bench.ask(readTelegram(3, 100, 8))));
    EXPECT_TRUE(isRefused(bench.ask(readTelegram(3, 100, 9))));
    EXPECT_FALSE(isRefused(bench.ask(readTelegram(6, 100, 9))));
}

TEST(Abilities, RefuseATelegramWithAnAbsentElement) {
    Bench bench(sim::Framing::DataMode);
    Abilities abilities;
    abilities.absent = {{Media::Registers, 17}};
    ASSERT_TRUE(bench.line.limit(5, abilities));
    EXPECT_FALSE(isRefused(bench.ask(readTelegram(6, 10, 7))));
    EXPECT_TRUE(isRefused(bench.ask(readTelegram(6, 10, 8))));
    EXPECT_TRUE(isRefused(bench.ask(readTelegram(6, 17, 1))));
    EXPECT_FALSE(isRefused(bench.ask(readTelegram(6, 18, 3))));
    EXPECT_FALSE(isRefused(bench.ask(readTelegram(7, 17, 1))));
}

TEST(Abilities, RefuseToWriteMoreWordsThanTheControllerTakes) {
    sim::Request request;
    request.command = sim::findCommand(14);
    request.count = 2;
    Abilities abilities;
    abilities.writeWords = 1;
    EXPECT_FALSE(abilities.allow(request));
    request.count = 1;
    EXPECT_TRUE(abilities.allow(request));
    request.command = sim::findCommand(11);
    request.count = 8;
    EXPECT_TRUE(abilities.allow(request)) << "flags are bits";
}

TEST(Abilities, AreReadFromTexts) {
    sim::AbilitySetting setting;
    std::string error;
    ASSERT_TRUE(sim::parseLimit("2:5/read_words=20", setting, error)) << error;
    EXPECT_EQ(setting.lineId, 2);
    EXPECT_EQ(setting.station, 5);
    EXPECT_EQ(setting.abilities.readWords, 20U);
    ASSERT_TRUE(sim::parseAbsent("5/R17", setting, error)) << error;
    EXPECT_EQ(setting.abilities.absent.count({Media::Registers, 17}), 1U);
    for (const char* const text :
         {"5/read_words", "5/read_words=0", "5/words=2", "read_words=2", "256/read_words=2"})
        EXPECT_FALSE(sim::parseLimit(text, setting, error)) << text;
    for (const char* const text : {"R17", "5/", "5/X1", "5/R70000"})
        EXPECT_FALSE(sim::parseAbsent(text, setting, error)) << text;
}
