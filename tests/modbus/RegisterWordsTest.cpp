#include "services/modbus/RegisterWords.h"
#include "site/IeeeWord.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using host::fitsRegisters;
using host::Point;
using host::registersOf;
using host::valueOfRegisters;
using testing::ElementsAre;

namespace {

constexpr auto highFirst = host::ModbusSettings::WordOrder::HighFirst;
constexpr auto lowFirst = host::ModbusSettings::WordOrder::LowFirst;

Point registerPoint() {
    Point point;
    point.kind = host::PointKind::Analog;
    point.address = {'R', 1};
    return point;
}

Point scaled(double scale, double offset) {
    Point point = registerPoint();
    host::Engineering engineering;
    engineering.scaling = host::Scaling(scale, offset);
    point.engineering = std::make_shared<const host::Engineering>(engineering);
    return point;
}

} // namespace

TEST(RegisterWords, HoldWholeNumbersWithTheirSign) {
    EXPECT_THAT(registersOf(registerPoint(), 70'000, highFirst), ElementsAre(0x0001, 0x1170));
    EXPECT_THAT(registersOf(registerPoint(), 70'000, lowFirst), ElementsAre(0x1170, 0x0001));
    EXPECT_THAT(registersOf(registerPoint(), -2, highFirst), ElementsAre(0xFFFF, 0xFFFE));
    EXPECT_THAT(registersOf(registerPoint(), -2'147'483'648.0, highFirst), ElementsAre(0x8000, 0x0000));
}

TEST(RegisterWords, HoldFloatsAsIeeeNumbers) {
    Point point = registerPoint();
    point.isFloat = true;
    EXPECT_THAT(registersOf(point, 1.5, highFirst), ElementsAre(0x3FC0, 0x0000));
    EXPECT_THAT(registersOf(point, -12.3125, lowFirst), ElementsAre(0x0000, 0xC145));
    Point ieee = registerPoint();
    ieee.isIeee = true;
    EXPECT_THAT(registersOf(ieee, host::ieeeWordOf(1.5), highFirst), ElementsAre(0x3FC0, 0x0000));
}

TEST(RegisterWords, HoldTheValueOfAScaledNumber) {
    EXPECT_THAT(registersOf(scaled(0.01, -20), 415, highFirst), ElementsAre(0xC17D, 0x999A)); // -15.85
}

TEST(RegisterWords, KeepWholeNumbersThatOnlyHaveDecimals) {
    Point point = registerPoint();
    host::Engineering engineering;
    engineering.decimals = 2;
    point.engineering = std::make_shared<const host::Engineering>(engineering);
    EXPECT_THAT(registersOf(point, 7, highFirst), ElementsAre(0, 7));
}

TEST(RegisterWords, AreTheSameNumberOnTheWayBack) {
    for (const auto order : {highFirst, lowFirst}) {
        EXPECT_EQ(valueOfRegisters(registerPoint(), registersOf(registerPoint(), -70'000, order), order),
                  -70'000);
        Point point = registerPoint();
        point.isFloat = true;
        EXPECT_EQ(valueOfRegisters(point, registersOf(point, 1.5, order), order), 1.5);
    }
}

TEST(RegisterWords, MeanTheStepThatSinglePrecisionIsBeside) {
    // As a float 1234.56 is 1234.56005859375, which no step of the register is.
    const Point point = scaled(0.01, 0);
    EXPECT_EQ(valueOfRegisters(point, {0x449A, 0x51EC}, highFirst), 1234.56);
    for (int raw = -200'000; raw <= 200'000; raw += 37)
        EXPECT_EQ(valueOfRegisters(point, registersOf(point, raw, highFirst), highFirst),
                  host::Scaling(0.01, 0).valueOf(raw));
}

TEST(RegisterWords, KeepAValueBetweenTwoSteps) {
    EXPECT_EQ(valueOfRegisters(scaled(0.5, 0), {0x3E80, 0x0000}, highFirst), 0.25);
}

TEST(RegisterWords, TellWhatTheyCannotHold) {
    EXPECT_TRUE(fitsRegisters(registerPoint(), 2'147'483'647));
    EXPECT_TRUE(fitsRegisters(scaled(1e20, 0), 1));
    EXPECT_FALSE(fitsRegisters(scaled(1e30, 0), 1'000'000'000));
    EXPECT_THAT(registersOf(scaled(1e30, 0), 1'000'000'000, highFirst), ElementsAre(0x7F7F, 0xFFFF));
    Point ieee = registerPoint();
    ieee.isIeee = true;
    const double notANumber = 0x7FC0'0000;
    EXPECT_FALSE(fitsRegisters(ieee, notANumber));
    EXPECT_THAT(registersOf(ieee, notANumber, highFirst), ElementsAre(0x7FC0, 0x0000));
    EXPECT_TRUE(std::isnan(valueOfRegisters(ieee, {0x7FC0, 0x0000}, highFirst)));
    EXPECT_TRUE(std::isinf(valueOfRegisters(scaled(0.1, 0), {0x7F80, 0x0000}, highFirst)));
}
