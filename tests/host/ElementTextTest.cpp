#include "site/ElementText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;

namespace host {
namespace {

// "R10 R11", ":f" behind floats; what is wrong instead, if something is.
std::string read(const char* text) {
    const ParsedReads parsed = parseElementReads(text);
    std::string told = parsed.what;
    for (const ElementRead& element : parsed.elements)
        told += (told.empty() ? "" : " ") + toText(element.address) + (element.isFloat ? ":f" : "");
    return told;
}

double written(const char* text) {
    const ParsedWrite parsed = parseElementWrite(text);
    EXPECT_EQ(parsed.what, "") << text;
    return parsed.write.value;
}

std::string refusal(const char* text) {
    const ParsedWrite parsed = parseElementWrite(text);
    EXPECT_NE(parsed.what, "") << text;
    return parsed.what + "; " + parsed.remedy;
}

} // namespace

TEST(ElementReads, AreSingleElementsRangesAndFloats) {
    EXPECT_EQ(read("R10"), "R10");
    EXPECT_EQ(read("r7"), "R7");
    EXPECT_EQ(read("I0..3"), "I0 I1 I2 I3");
    EXPECT_EQ(read("R30:float"), "R30:f");
    EXPECT_EQ(read("R30..31:float"), "R30:f R31:f");
    EXPECT_EQ(read("T65535..65535"), "T65535");
    EXPECT_EQ(parseElementReads("R0..65535").elements.size(), 65536U);
}

TEST(ElementReads, MayBeOfFormatIeee) {
    const ParsedReads parsed = parseElementReads("R30..31:ieee");
    ASSERT_EQ(parsed.elements.size(), 2U);
    EXPECT_TRUE(parsed.elements[1].isIeee);
    EXPECT_FALSE(parsed.elements[1].isFloat);
    EXPECT_THAT(read("F5:ieee"), HasSubstr("only registers (R) hold floating-point values"));
}

TEST(ElementReads, TellWhatIsWrong) {
    for (const char* const text :
         {"", "R", "X1", "R-1", "R65536", "R1:", "R1:double", "R1..", "..5", "R1...5", "R1..R5", "R1..65536"})
        EXPECT_TRUE(parseElementReads(text).elements.empty()) << text;
    EXPECT_THAT(read("R20..10"), HasSubstr("\"10\" is no element number from 20 to 65535"));
    EXPECT_THAT(read("F5:float"), HasSubstr("only registers (R) hold floating-point values"));
}

TEST(ElementWrite, IsAnAddressAndAValue) {
    const ParsedWrite parsed = parseElementWrite("R30:float=1.5");
    EXPECT_EQ(parsed.write.address, (ElementAddress{'R', 30}));
    EXPECT_TRUE(parsed.write.isFloat);
    EXPECT_EQ(parsed.write.value, 1.5);
    EXPECT_EQ(written("O200=1"), 1);
    EXPECT_EQ(written("F3=0"), 0);
}

TEST(ElementWrite, TakesWhatTheElementHolds) {
    EXPECT_EQ(written("R1=-2147483648"), -2147483648.0);
    EXPECT_EQ(written("R1=2147483647"), 2147483647.0);
    EXPECT_EQ(written("T1=0"), 0);
    EXPECT_EQ(written("C1=2147483647"), 2147483647.0);
}

TEST(ElementWrite, TakesWordsInAnyCaseForWhatIsSwitched) {
    for (const char* const on : {"O1=on", "O1=ON", "F1=On", "O1=true", "O1=TRUE"})
        EXPECT_EQ(written(on), 1) << on;
    for (const char* const off : {"O1=off", "F1=OFF", "O1=False"})
        EXPECT_EQ(written(off), 0) << off;
    EXPECT_THAT(refusal("R1=on"), HasSubstr("no number that fits"));
    EXPECT_THAT(refusal("O1=onn"), HasSubstr("O1 takes 0 or 1"));
}

TEST(ElementWrite, RefusesWhatTheElementDoesNotHold) {
    EXPECT_THAT(refusal("O1=2"), HasSubstr("O1 takes 0 or 1"));
    EXPECT_THAT(refusal("R1=2147483648"), HasSubstr("from -2147483648 to 2147483647"));
    EXPECT_THAT(refusal("R1=-2147483649"), HasSubstr("from -2147483648 to 2147483647"));
    EXPECT_THAT(refusal("T1=-1"), HasSubstr("from 0 to 2147483647"));
    EXPECT_THAT(refusal("C1=2147483648"), HasSubstr("from 0 to 2147483647"));
    EXPECT_THAT(refusal("R1=1.5"), HasSubstr("write R1:float=VALUE"));
}

TEST(ElementWrite, RefusesFloatsBeyondTheControllersFormat) {
    // From 2 to the power -65 up to below 2 to the power 63, in single precision.
    EXPECT_EQ(written("R1:float=2.7105055e-20"), 2.7105055e-20);
    EXPECT_EQ(written("R1:float=-9.2233715e18"), -9.2233715e18);
    EXPECT_EQ(written("R1:float=0"), 0);
    EXPECT_THAT(refusal("R1:float=2.7e-20"), HasSubstr("too close to 0"));
    EXPECT_THAT(refusal("R1:float=1e-400"), HasSubstr("too close to 0"));
    EXPECT_THAT(refusal("R1:float=9.2233721e18"), HasSubstr("too large"));
    EXPECT_THAT(refusal("R1:float=-1e39"), HasSubstr("too large"));
    EXPECT_THAT(refusal("R1:float=1e400"), HasSubstr("too large"));
    for (const char* const text : {"R1:float=nan", "R1:float=inf", "R1:float=", "R1:float=1.5x"})
        EXPECT_THAT(refusal(text), HasSubstr("is no number")) << text;
}

TEST(ElementWrite, TakesTheRangeOfSinglePrecisionForFormatIeee) {
    EXPECT_TRUE(parseElementWrite("R1:ieee=1.5").write.isIeee);
    EXPECT_EQ(written("R1:ieee=3.4028235e38"), 3.4028235e38);
    EXPECT_EQ(written("R1:ieee=-1e-45"), -1e-45);
    EXPECT_THAT(refusal("R1:ieee=3.5e38"), HasSubstr("too large for single precision"));
    EXPECT_THAT(refusal("R1:ieee=-1e400"), HasSubstr("too large for single precision"));
    EXPECT_THAT(refusal("R1:ieee=1e-46"), HasSubstr("too close to 0 for single precision"));
    EXPECT_THAT(refusal("R1:ieee=-1e-400"), HasSubstr("too close to 0 for single precision"));
    EXPECT_THAT(refusal("R1:ieee=nan"), HasSubstr("is no number"));
    EXPECT_THAT(refusal("T1:ieee=1"), HasSubstr("only registers (R)"));
}

TEST(ElementWrite, TellsWhatIsWrong) {
    EXPECT_THAT(refusal("R1"), HasSubstr("gives no value"));
    EXPECT_THAT(refusal("I5=1"), HasSubstr("inputs (I) are read only"));
    EXPECT_THAT(refusal("R1..5=1"), HasSubstr("a value goes to one element"));
    EXPECT_THAT(refusal("T5:float=1"), HasSubstr("only registers (R)"));
    for (const char* const text : {"=1", "R=1", "R1=", "R1=0x10", "R1= 1", "R1=1=2", "O1=one", "R1=+1"})
        EXPECT_NE(refusal(text), "") << text;
}

} // namespace host
