#include "PublishingTest.h"

// How the words of the elements become the values of points.

using Halvex::PointDataType;

TEST_F(PublishingTest, ReadsATimerAsUnsigned) {
    EXPECT_EQ(converted("T", 0xFFFFFFFF, PointDataType::Integer), 4294967295.0);
    EXPECT_EQ(converted("T", 250, PointDataType::Integer), 250);
}

TEST_F(PublishingTest, ReadsACounterAsSigned) {
    EXPECT_EQ(converted("C", 0xFFFFFFFF, PointDataType::Integer), -1);
    EXPECT_EQ(converted("C", 0x7FFFFFFF, PointDataType::Integer), 2147483647);
}

TEST_F(PublishingTest, ReadsARegisterOfAnyOtherFormatAsSigned) {
    EXPECT_EQ(converted("R", 0xFFFFFFFE, PointDataType::Integer), -2);
    EXPECT_EQ(converted("R", 0x80000041, PointDataType::Integer), -2147483583);
    EXPECT_EQ(converted("R", 0x80000041, static_cast<PointDataType>(13)), -2147483583);
    EXPECT_EQ(converted("R", 0x80000041, static_cast<PointDataType>(15)), -2147483583);
}

TEST_F(PublishingTest, ReadsAFloatFormatOnRegistersAlone) {
    EXPECT_EQ(converted("T", 0x80000041, PointDataType::Float), 2147483713.0);
    EXPECT_EQ(converted("C", 0x80000041, PointDataType::Float), -2147483583);
}

TEST_F(PublishingTest, DecodesTheControllersFloat) {
    EXPECT_EQ(convertedFloat(0x80000041), 1.0);
    EXPECT_EQ(convertedFloat(0x800000C1), -1.0);
    EXPECT_EQ(convertedFloat(0xC0000042), 3.0);
    EXPECT_EQ(convertedFloat(0xC00000C2), -3.0);
    EXPECT_EQ(convertedFloat(0x80000040), 0.5);
    EXPECT_EQ(convertedFloat(0xA0000044), 10.0);
}

TEST_F(PublishingTest, DecodesAZeroWordAsZero) {
    EXPECT_EQ(convertedFloat(0), 0.0);
}

TEST_F(PublishingTest, DecodesAMantissaOfZeroAsZeroWhateverTheExponent) {
    EXPECT_EQ(convertedFloat(0x0000007F), 0.0);
    EXPECT_EQ(convertedFloat(0x000000C1), 0.0);
}

TEST_F(PublishingTest, DecodesAnUnnormalisedMantissaAsItStands) {
    EXPECT_EQ(convertedFloat(0x40000041), 0.5);
    EXPECT_EQ(convertedFloat(0x00000158), 1.0); // the lowest bit of the mantissa: 2^-24 * 2^24
}

TEST_F(PublishingTest, DecodesTheWidestAndTheNarrowestFloat) {
    EXPECT_EQ(convertedFloat(0xFFFFFF7F), std::ldexp(16777215.0, 63 - 24));
    EXPECT_EQ(convertedFloat(0xFFFFFFFF), -std::ldexp(16777215.0, 63 - 24));
    EXPECT_EQ(convertedFloat(0x80000000), std::ldexp(1.0, -65));
    EXPECT_EQ(convertedFloat(0x00000100), std::ldexp(1.0, -24 - 64));
}

TEST_F(PublishingTest, ReadsAValueByTheMediaOfTheAnswer) {
    addAnalog(1, "R5");
    rtu->InitRtu();
    rtu->GetPointList()->GetAnalogPoint(1)->address = QStringLiteral("T");
    PutCallRecorder puts(rtu);
    publishAnalog(5, "R", {0xFFFFFFFF});
    EXPECT_EQ(puts.analog, (std::vector<AnalogPut>{{1, -1}}));
}
