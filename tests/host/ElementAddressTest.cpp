#include "site/ElementAddress.h"

#include <gtest/gtest.h>

using host::parseElementAddress;

namespace {

std::string plainForm(const std::string& text) {
    const host::ParsedAddress parsed = parseElementAddress(text);
    return parsed.address ? toText(*parsed.address) : "none";
}

} // namespace

TEST(ElementAddress, TakesItsPlainForm) {
    EXPECT_EQ(plainForm("R7"), "R7");
    EXPECT_EQ(plainForm("R007"), "R7");
    EXPECT_EQ(plainForm("r7"), "R7");
    EXPECT_EQ(plainForm(" R 7 "), "R7");
    EXPECT_EQ(plainForm("f00000"), "F0");
    EXPECT_EQ(plainForm("C000000065535"), "C65535");
}

TEST(ElementAddress, HasOneOfSixMedia) {
    for (const char* const text : {"I1", "O1", "F1", "R1", "T1", "C1"})
        EXPECT_EQ(plainForm(text), text);
    for (const char* const text : {"P1", "X1", "RR1", "1", "R", "", "R-1", "R1.0", "R1a"})
        EXPECT_NE(parseElementAddress(text).what.find("fits no media"), std::string::npos) << text;
}

TEST(ElementAddress, EndsAt65535) {
    EXPECT_EQ(plainForm("R65535"), "R65535");
    for (const char* const text : {"R65536", "R99999", "R4294967296", "R18446744073709551616"})
        EXPECT_NE(parseElementAddress(text).what.find("end at 65535"), std::string::npos) << text;
}
