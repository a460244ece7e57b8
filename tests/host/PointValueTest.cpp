#include "site/PointValue.h"
#include "site/IeeeWord.h"
#include "site/NumberText.h"
#include "site/PointText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using namespace host;
using testing::HasSubstr;

namespace {

Point analog(char media = 'R') {
    Point point;
    point.kind = PointKind::Analog;
    point.address = {media, 7};
    return point;
}

Point scaled(double scale, double offset = 0, char media = 'R') {
    Point point = analog(media);
    EngineeringPool pool;
    Engineering engineering;
    engineering.scaling = Scaling(scale, offset);
    point.engineering = pool.take(engineering);
    return point;
}

Point withDecimals(Point point, std::uint8_t decimals) {
    Engineering engineering = point.engineering ? *point.engineering : Engineering();
    engineering.decimals = decimals;
    point.engineering = std::make_shared<const Engineering>(engineering);
    return point;
}

Point ieee() {
    Point point = analog();
    point.isIeee = true;
    return point;
}

Point controllerFloat() {
    Point point = analog();
    point.isFloat = true;
    return point;
}

double word(std::uint32_t bits) {
    return static_cast<double>(static_cast<std::int32_t>(bits));
}

std::string faultOf(const Point& point, double value) {
    return rawOf(point, value).fault;
}

// Each of a scale's and an offset's digits, so that people could have written them.
double decimalNumber(std::mt19937& random, int digits, int mostDecimals) {
    const auto limit = static_cast<int>(std::pow(10, digits));
    const int whole = std::uniform_int_distribution<int>(-limit, limit)(random);
    const int decimals = std::uniform_int_distribution<int>(0, mostDecimals)(random);
    return whole / std::pow(10.0, decimals);
}

} // namespace

TEST(PointValue, IsTheRawNumberWithoutScaleAndOffset) {
    EXPECT_EQ(valueOf(analog(), -5), -5);
    EXPECT_EQ(rawOf(analog(), -5).raw, -5);
    EXPECT_FALSE(hasRaw(analog()));
    EXPECT_EQ(unitOf(analog()), "");
}

TEST(PointValue, IsRawTimesScalePlusOffset) {
    EXPECT_EQ(valueOf(scaled(0.1), 215), 21.5);
    EXPECT_EQ(valueOf(scaled(2, -10), 7), 4);
    EXPECT_EQ(valueOf(scaled(-0.5, 3), 4), 1);
    EXPECT_TRUE(hasRaw(scaled(0.1)));
}

// Double precision makes 0.30000000000000004 and -0.04999999999995453 of them.
TEST(PointValue, IsTheDecimalNumberThatAPersonWorksOut) {
    EXPECT_EQ(valueText(scaled(0.1), 3), "0.3");
    EXPECT_EQ(valueText(scaled(0.1, -273.15), 2731), "-0.05");
    EXPECT_EQ(valueText(scaled(0.01), 2147483647), "21474836.47");
    EXPECT_EQ(valueText(scaled(1e-9), -1), "-1e-09");
}

TEST(PointValue, IsRoundedToItsDecimals) {
    EXPECT_EQ(valueText(withDecimals(scaled(0.01), 1), 2157), "21.6");
    EXPECT_EQ(valueText(withDecimals(scaled(0.1), 2), 215), "21.50");
    EXPECT_EQ(valueText(withDecimals(scaled(0.1), 0), -4), "0"); // and not -0
    EXPECT_EQ(valueText(withDecimals(analog(), 1), 12), "12.0");
    EXPECT_EQ(valueText(withDecimals(controllerFloat(), 3), static_cast<double>(1.1F)), "1.100");
}

TEST(PointValue, SetsTheWholeNumberThatHasTheValue) {
    EXPECT_EQ(rawOf(scaled(0.1), 21.5).raw, 215); // 21.5 / 0.1 is 214.99999999999997
    EXPECT_EQ(rawOf(scaled(0.1), 0.1 + 0.2).raw, 3);
    EXPECT_EQ(rawOf(scaled(-0.5, 3), 1).raw, 4);
    EXPECT_EQ(faultOf(scaled(0.1), 21.5), "");
}

TEST(PointValue, RefusesWhatLiesBetweenTwoSteps) {
    EXPECT_EQ(faultOf(scaled(0.1), 21.57), "the value does not fit a register; give 21.5 or 21.6");
    EXPECT_EQ(faultOf(scaled(-0.5, 3), 0.9), "the value does not fit a register; give 0.5 or 1");
    EXPECT_EQ(faultOf(scaled(0.1), 21.50001), "the value does not fit a register; give 21.5 or 21.6");
    EXPECT_EQ(faultOf(scaled(10, 0, 'T'), 12), "the value does not fit a timer; give 10 or 20");
}

TEST(PointValue, RefusesWhatIsOutOfRange) {
    EXPECT_EQ(faultOf(scaled(0.1), 214748364.8),
              "the value does not fit a register; give one from -214748364.8 to 214748364.7");
    EXPECT_EQ(faultOf(scaled(-0.1, 0, 'C'), 0.1),
              "the value does not fit a counter; give one from -214748364.7 to 0");
    EXPECT_EQ(faultOf(scaled(0.1), 214748364.72), // beside the last step there is no other
              "the value does not fit a register; give one from -214748364.8 to 214748364.7");
    EXPECT_EQ(faultOf(scaled(0.1), -214748364.8), "");
    for (const double none :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()})
        EXPECT_EQ(faultOf(scaled(0.1), none), "the value is no number; give one");
}

// Whatever is written, the value that comes back is shown as it was given.
TEST(PointValue, OfEveryWholeNumberLeadsBackToIt) {
    std::mt19937 random(12);
    std::uniform_int_distribution<std::int32_t> anyWord(std::numeric_limits<std::int32_t>::min(),
                                                        std::numeric_limits<std::int32_t>::max());
    std::uniform_int_distribution<std::int32_t> smallWord(-10'000, 10'000);
    for (int i = 0; i < 3'000; ++i) {
        const double scale = decimalNumber(random, 4, 6);
        if (scale == 0)
            continue;
        const Point point = scaled(scale, decimalNumber(random, 6, 3));
        const double raw = i % 2 == 0 ? anyWord(random) : smallWord(random);
        const double value = valueOf(point, raw);
        ASSERT_EQ(rawOf(point, value).fault, "") << raw << ' ' << scale;
        ASSERT_EQ(rawOf(point, value).raw, raw) << scale;
        ASSERT_EQ(rawOf(point, std::stod(valueText(point, raw))).raw, raw) << valueText(point, raw);
        const double between = value + 0.3 * scale;
        ASSERT_NE(rawOf(point, between).fault, "") << raw << ' ' << scale;
    }
}

TEST(PointValue, OfScalesWithManyDigitsLeadsBackToo) {
    std::mt19937 random(13);
    std::uniform_real_distribution<double> exponent(-20, 20);
    std::uniform_real_distribution<double> share(-1e9, 1e9);
    std::uniform_int_distribution<std::int32_t> anyWord(std::numeric_limits<std::int32_t>::min(),
                                                        std::numeric_limits<std::int32_t>::max());
    for (int i = 0; i < 3'000; ++i) {
        const double scale = std::pow(10.0, exponent(random)) * (i % 2 == 0 ? 1 : -1);
        const Point point = scaled(scale, share(random) * scale);
        const double raw = anyWord(random);
        ASSERT_EQ(rawOf(point, valueOf(point, raw)).raw, raw) << numberText(scale);
    }
}

TEST(IeeeRegister, HoldsTheBitsOfANumber) {
    EXPECT_EQ(valueOf(ieee(), word(0x3F80'0000)), 1);
    EXPECT_EQ(valueOf(ieee(), word(0xC148'0000)), -12.5);
    EXPECT_EQ(valueOf(ieee(), 0), 0);
    EXPECT_EQ(valueOf(ieee(), word(0x0000'0001)), std::ldexp(1.0, -149));
    EXPECT_EQ(rawOf(ieee(), -12.5).raw, word(0xC148'0000));
    EXPECT_EQ(rawOf(ieee(), 0.1).raw, word(0x3DCC'CCCD));
    EXPECT_EQ(valueText(ieee(), word(0x3DCC'CCCD)), "0.1");
    EXPECT_TRUE(hasRaw(ieee()));
}

TEST(IeeeRegister, MayHoldNoNumber) {
    EXPECT_EQ(valueText(ieee(), word(0x7FC0'0000)), "NaN");
    EXPECT_EQ(valueText(ieee(), word(0xFFC0'0001)), "NaN");
    EXPECT_EQ(valueText(withDecimals(ieee(), 2), word(0x7F80'0000)), "inf");
    EXPECT_EQ(valueText(ieee(), word(0xFF80'0000)), "-inf");
    for (const std::uint32_t bits : {0x7FC0'0000U, 0xFFC0'0001U, 0x7F80'0000U, 0xFF80'0000U})
        EXPECT_FALSE(isNumber(ieee(), word(bits)));
    EXPECT_TRUE(isNumber(ieee(), word(0x7F7F'FFFF)));
}

TEST(IeeeRegister, TakesEveryNumberOfSinglePrecision) {
    EXPECT_EQ(rawOf(ieee(), 3.4028235e38).raw, word(0x7F7F'FFFF)); // as valueText() writes the largest one
    EXPECT_EQ(rawOf(ieee(), 1e-45).raw, 1);
    for (const double unfit : {3.5e38, -3.5e38, 1e300, 1e-46, -1e-300})
        EXPECT_THAT(faultOf(ieee(), unfit), HasSubstr("does not fit single precision")) << unfit;
}

TEST(IeeeRegister, OfAnyBitsLeadsBackToThem) {
    std::mt19937 random(14);
    for (int i = 0; i < 10'000; ++i) {
        const double raw = word(static_cast<std::uint32_t>(random()));
        if (!isNumber(ieee(), raw))
            continue;
        ASSERT_EQ(rawOf(ieee(), valueOf(ieee(), raw)).raw, raw);
        ASSERT_EQ(rawOf(ieee(), std::stod(valueText(ieee(), raw))).raw, raw) << valueText(ieee(), raw);
    }
}

TEST(FloatRegister, TakesTheNearestNumberOfTheControllersFormat) {
    EXPECT_EQ(rawOf(controllerFloat(), 16777217).raw, 16777216);
    EXPECT_EQ(shownValue(controllerFloat(), rawOf(controllerFloat(), 0.1000000001).raw), 0.1);
    EXPECT_THAT(faultOf(controllerFloat(), 9.3e18), HasSubstr("the controller's floating-point format"));
    EXPECT_THAT(faultOf(controllerFloat(), 1e-20), HasSubstr("the controller's floating-point format"));
}

// Single precision keeps 24 bits of the raw number; scale and offset lose no more than a few of the last.
TEST(FloatRegister, IsScaledInBothDirections) {
    std::mt19937 random(15);
    std::uniform_real_distribution<double> number(-1e6, 1e6);
    for (int i = 0; i < 3'000; ++i) {
        Point point = scaled(std::max(0.001, std::fabs(decimalNumber(random, 4, 3))), 0);
        (i % 2 == 0 ? point.isFloat : point.isIeee) = true;
        const double single = static_cast<double>(static_cast<float>(number(random)));
        const double raw = point.isFloat ? single : ieeeWordOf(single);
        const double value = valueOf(point, raw);
        ASSERT_EQ(rawOf(point, value).raw, raw) << value;
    }
}

TEST(FloatRegister, IsShownWithTheDigitsThatItHolds) {
    Point point = scaled(10);
    point.isFloat = true;
    EXPECT_EQ(valueText(point, static_cast<double>(0.11F)), "1.1");
    EXPECT_EQ(valueText(point, 1e38), "1e+39"); // more than single precision holds
}

TEST(NumberText, HasTheFewestDigits) {
    EXPECT_EQ(numberText(0.1), "0.1");
    EXPECT_EQ(numberText(-273.15), "-273.15");
    EXPECT_EQ(numberText(4294967295), "4294967295");
    EXPECT_EQ(numberText(1e20), "1e+20");
    EXPECT_EQ(numberText(-0.0), "0");
    EXPECT_EQ(countDecimals(0.125), 3U);
    EXPECT_EQ(countDecimals(1e20), 0U);
    EXPECT_EQ(countDecimals(1e-9), 9U);
}
