#include "AnalogValues.h"

#include "Hex.h"

#include <HalvexDriverComponent/Halvex.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>

namespace {

constexpr auto integer = static_cast<unsigned>(Halvex::PointDataType::Integer);
constexpr auto floating = static_cast<unsigned>(Halvex::PointDataType::Float);

double read(const char* media, unsigned dataType, quint32 word) {
    return sbus::WordReader(QString::fromLatin1(media)).value(dataType, word);
}

QByteArray single(const char* media, unsigned dataType, double value) {
    return toHex(sbus::singleWriteData(QString::fromLatin1(media), dataType, value));
}

QByteArray listed(const char* media, unsigned dataType, double value) {
    return toHex(sbus::listWriteData(QString::fromLatin1(media), dataType, value));
}

} // namespace

TEST(AnalogValues, ReadTimersUnsignedAndAllElseSigned) {
    EXPECT_EQ(read("T", integer, 0xFFFFFFFF), 4'294'967'295.0);
    for (const char* media : {"R", "C", "X", "", "TT"})
        EXPECT_EQ(read(media, integer, 0xFFFFFFFF), -1) << media;
}

TEST(AnalogValues, ReadTheControllersFormatInRegistersOfTypeFourteenAlone) {
    EXPECT_EQ(read("R", 14, 0x80000041), 1.0);
    EXPECT_EQ(read("R", 14, 0x800000C1), -1.0);
    for (const unsigned type : {0u, 1u, 13u, 15u, 4'294'967'295u})
        EXPECT_EQ(read("R", type, 0x80000041), -2147483583.0) << type;
    EXPECT_EQ(read("T", floating, 0x80000041), 2147483713.0);
    EXPECT_EQ(read("C", floating, 0x80000041), -2147483583.0);
    EXPECT_EQ(read("RR", floating, 0x80000041), -2147483583.0);
}

TEST(AnalogValues, AreWrittenAlikeBySingleAndListOutsideOfFloatRegisters) {
    for (const auto write : {single, listed}) {
        EXPECT_EQ(write("T", integer, -1.0), "FF FF FF FF");
        EXPECT_EQ(write("T", floating, 4'294'967'297.0), "00 00 00 01");
        EXPECT_EQ(write("R", integer, -12.7), "FF FF FF F4");
        EXPECT_EQ(write("C", floating, 12.7), "00 00 00 0C");
    }
}

TEST(AnalogValues, OfFloatRegistersAreWrittenAsAWordBySingleAndAsADoubleByList) {
    EXPECT_EQ(single("R", floating, 1.0), "80 00 00 41");
    EXPECT_EQ(listed("R", floating, 1.0), "3F F0 00 00 00 00 00 00");
    EXPECT_EQ(listed("R", floating, 3.14), "40 09 1E B8 60 00 00 00") << "rounded to single precision";
}

TEST(AnalogValues, ThatASignedNumberCannotHoldAreWrittenAsItsLowest) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(single("R", integer, 2'147'483'647.9), "7F FF FF FF");
    EXPECT_EQ(single("R", integer, -2'147'483'648.9), "80 00 00 00");
    for (const double value : {2'147'483'648.0, -2'147'483'649.0, infinity, -infinity, notANumber})
        EXPECT_EQ(single("R", integer, value), "80 00 00 00") << value;
}

// The lowest 64-bit number ends in 32 zero bits.
TEST(AnalogValues, ThatSixtyFourBitsCannotHoldAreWrittenToTimersAsZero) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const double value : {9'223'372'036'854'775'808.0, -9'223'372'036'854'775'808.0, 1e300, -1e300,
                               infinity, -infinity, notANumber})
        EXPECT_EQ(single("T", integer, value), "00 00 00 00") << value;
    EXPECT_EQ(single("T", integer, 9'223'372'036'854'774'784.0), "FF FF FC 00") << "the highest that fits";
    EXPECT_EQ(single("T", integer, -9'223'372'036'854'774'784.0), "00 00 04 00");
}
