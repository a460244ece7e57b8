#include "Hex.h"
#include "ReferenceTelegram.h"

#include <SaiaFloat.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// Biased exponents of single precision that the word has a place for.
constexpr quint32 lowestExponent = 62;
constexpr quint32 highestExponent = 189;

QByteArray encoded(double value) {
    return toHex(bigEndian32(sbus::encodeSaiaFloat(value)));
}

double singleOf(bool negative, quint32 exponent, quint32 fraction) {
    const quint32 bits = (negative ? 0x80000000u : 0u) | exponent << 23 | fraction;
    float value = 0;
    static_assert(sizeof(value) == sizeof(bits), "single precision has 32 bits");
    std::memcpy(&value, &bits, sizeof(bits));
    return static_cast<double>(value);
}

quint64 bitsOf(double value) {
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof(value));
    return bits;
}

quint32 randomFraction(std::mt19937& random) {
    return static_cast<quint32>(random()) & 0x7FFFFFu;
}

} // namespace

TEST(SaiaFloatEncoding, HoldsMantissaSignAndExponent) {
    EXPECT_EQ(encoded(1.0), "80 00 00 41");
    EXPECT_EQ(encoded(-1.0), "80 00 00 C1");
    EXPECT_EQ(encoded(100.0), "C8 00 00 47");
    EXPECT_EQ(encoded(-100.0), "C8 00 00 C7");
    EXPECT_EQ(encoded(0.5), "80 00 00 40");
    EXPECT_EQ(encoded(-0.5), "80 00 00 C0");
    EXPECT_EQ(encoded(2.0), "80 00 00 42");
    EXPECT_EQ(encoded(1.5), "C0 00 00 41");
    EXPECT_EQ(encoded(16'777'215.0), "FF FF FF 58"); // 24 ones
}

TEST(SaiaFloatEncoding, RoundsToSinglePrecisionFirst) {
    EXPECT_EQ(encoded(0.1), "CC CC CD 3D");
    EXPECT_EQ(encoded(3.14), "C8 F5 C3 42");
    EXPECT_EQ(encoded(-3.14), "C8 F5 C3 C2");
    EXPECT_EQ(encoded(1.0 + std::ldexp(1.0, -24)), "80 00 00 41") << "a tie goes to the even neighbour";
    EXPECT_EQ(encoded(1.0 + 3 * std::ldexp(1.0, -24)), "80 00 02 41") << "a tie goes to the even neighbour";
    EXPECT_EQ(encoded(2.0 - std::ldexp(1.0, -40)), "80 00 00 42") << "rounds up to the next exponent";
}

TEST(SaiaFloatEncoding, ReachesFromTheLowestToTheHighestExponent) {
    EXPECT_EQ(encoded(std::ldexp(1.0, -65)), "80 00 00 00");
    EXPECT_EQ(encoded(-std::ldexp(1.0, -65)), "80 00 00 80");
    EXPECT_EQ(encoded(std::ldexp(1.0, 62)), "80 00 00 7F");
    EXPECT_EQ(encoded(-std::ldexp(1.0, 62)), "80 00 00 FF");
    EXPECT_EQ(encoded(std::ldexp(16'777'215.0, 39)), "FF FF FF 7F") << "the greatest";
}

TEST(SaiaFloatEncoding, GivesTheExponentAloneBeyondEitherEnd) {
    EXPECT_EQ(encoded(std::ldexp(1.0, -66)), "FF FF FF FF");
    EXPECT_EQ(encoded(-std::ldexp(1.0, -66)), "FF FF FF FF");
    EXPECT_EQ(encoded(std::ldexp(1.0, 63)), "00 00 00 80");
    EXPECT_EQ(encoded(-std::ldexp(1.5, 63)), "00 00 00 80");
    EXPECT_EQ(encoded(9'223'372'036'854'774'784.0), "00 00 00 80") << "rounds up to 2 to the power 63";
}

TEST(SaiaFloatEncoding, GivesFixedWordsForZeroInfinityAndWhatIsNoNumber) {
    EXPECT_EQ(encoded(0.0), "FF FF FF C2");
    EXPECT_EQ(encoded(-0.0), "FF FF FF C2");
    EXPECT_EQ(encoded(infinity), "00 00 00 C1");
    EXPECT_EQ(encoded(-infinity), "00 00 00 C1");
    EXPECT_EQ(encoded(std::numeric_limits<double>::quiet_NaN()), "00 00 00 C1");
    EXPECT_EQ(encoded(-std::numeric_limits<double>::quiet_NaN()), "00 00 00 C1");
}

TEST(SaiaFloatEncoding, TakesWhatSinglePrecisionCannotHoldForZeroOrInfinity) {
    EXPECT_EQ(encoded(1e-40), "FF FF FF C2") << "a subnormal number has the exponent of zero";
    EXPECT_EQ(encoded(1e-300), "FF FF FF C2");
    EXPECT_EQ(encoded(1e39), "00 00 00 C1");
    EXPECT_EQ(encoded(-std::numeric_limits<double>::max()), "00 00 00 C1");
    EXPECT_EQ(encoded(static_cast<double>(std::numeric_limits<float>::max())), "00 00 00 C0");
}

TEST(SaiaFloatEncoding, GivesTheExponentLessSixtyTwoForEveryExponentWithoutAPlace) {
    std::mt19937 random(5);
    for (quint32 exponent = 0; exponent <= 255; ++exponent) {
        if (exponent >= lowestExponent && exponent <= highestExponent)
            continue;
        for (const bool negative : {false, true}) {
            // Infinity when the exponent is 255; one that is no number has a case of its own.
            const quint32 fraction = exponent == 255 ? 0 : randomFraction(random);
            ASSERT_EQ(sbus::encodeSaiaFloat(singleOf(negative, exponent, fraction)), exponent - 62)
                << exponent;
        }
    }
}

TEST(SaiaFloatEncoding, PutsEveryExponentWithAPlaceIntoTheLowestBits) {
    for (quint32 exponent = lowestExponent; exponent <= highestExponent; ++exponent) {
        EXPECT_EQ(sbus::encodeSaiaFloat(singleOf(false, exponent, 0)), 0x80000000u | (exponent - 62))
            << exponent;
        EXPECT_EQ(sbus::encodeSaiaFloat(singleOf(true, exponent, 0)), 0x80000080u | (exponent - 62))
            << exponent;
        EXPECT_EQ(sbus::encodeSaiaFloat(singleOf(false, exponent, 0x7FFFFF)), 0xFFFFFF00u | (exponent - 62))
            << exponent;
    }
}

TEST(SaiaFloatRoundTrip, AMillionRandomValuesComeBackBitForBit) {
    std::mt19937 random(20240506);
    std::uniform_int_distribution<quint32> exponents(lowestExponent, highestExponent);
    for (int i = 0; i < 1'000'000; ++i) {
        const bool negative = (random() & 1u) != 0;
        const quint32 exponent = exponents(random);
        const double value = singleOf(negative, exponent, randomFraction(random));
        ASSERT_EQ(bitsOf(sbus::decodeSaiaFloat(sbus::encodeSaiaFloat(value))), bitsOf(value)) << value;
    }
}

TEST(SaiaFloatRoundTrip, TheFirstAndLastValueOfEveryExponentComeBackBitForBit) {
    for (quint32 exponent = lowestExponent; exponent <= highestExponent; ++exponent)
        for (const quint32 fraction : {0x000000u, 0x000001u, 0x400000u, 0x7FFFFEu, 0x7FFFFFu})
            for (const bool negative : {false, true}) {
                const double value = singleOf(negative, exponent, fraction);
                ASSERT_EQ(bitsOf(sbus::decodeSaiaFloat(sbus::encodeSaiaFloat(value))), bitsOf(value))
                    << value;
            }
}

TEST(SaiaFloatRoundTrip, AMillionRandomWordsWithALeadingOneComeBack) {
    std::mt19937 random(60540202);
    for (int i = 0; i < 1'000'000; ++i) {
        const quint32 word = static_cast<quint32>(random()) | 0x80000000u;
        ASSERT_EQ(sbus::encodeSaiaFloat(sbus::decodeSaiaFloat(word)), word);
    }
}

TEST(SaiaFloatRoundTrip, AnUnnormalisedWordComesBackNormalised) {
    EXPECT_EQ(toHex(bigEndian32(sbus::encodeSaiaFloat(sbus::decodeSaiaFloat(0x40000042u)))), "80 00 00 41");
    EXPECT_EQ(toHex(bigEndian32(sbus::encodeSaiaFloat(sbus::decodeSaiaFloat(0x000001C1u)))), "80 00 00 AA");
}

TEST(SaiaFloatRoundTrip, ValuesBetweenTwoSinglePrecisionNumbersComeBackRounded) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> values(-1e6, 1e6);
    for (int i = 0; i < 10'000; ++i) {
        const double value = values(random);
        ASSERT_EQ(sbus::decodeSaiaFloat(sbus::encodeSaiaFloat(value)),
                  static_cast<double>(static_cast<float>(value)));
    }
}

TEST(SaiaFloatRoundTrip, ZeroHasNoWordAndComesBackAsAlmostMinusFour) {
    EXPECT_EQ(sbus::decodeSaiaFloat(sbus::encodeSaiaFloat(0.0)), -4.0 + std::ldexp(1.0, -22));
}
