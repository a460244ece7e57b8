#include "TomlShape.h"

#include <gtest/gtest.h>

using text::findTomlShapeFault;

namespace {

std::string times(std::size_t count, const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

std::string faultOf(const std::string& toml) {
    const auto fault = findTomlShapeFault(toml);
    return fault ? std::to_string(fault->line) + ":" + std::to_string(fault->column) + " " + fault->what : "";
}

} // namespace

TEST(TomlShape, OfASiteFileIsGood) {
    EXPECT_EQ(faultOf("[[channel.rtu]]\nscan = { integrity = \"60s\" } # [[[[\nignore = [\"a.b\", 'c']\n"),
              "");
}

TEST(TomlShape, MayBeNestedSixteenDeep) {
    EXPECT_EQ(faultOf("a = " + times(16, "[") + times(16, "]") + "\nb = [[1], [2]]\n"), "");
    EXPECT_EQ(faultOf("\na = " + times(17, "[")), "2:21 more than 16 arrays and tables within each other");
    EXPECT_EQ(faultOf("a = " + times(17, "{b=")), "1:53 more than 16 arrays and tables within each other");
    EXPECT_NE(faultOf("a = " + times(9, "[{b=")), "");
}

TEST(TomlShape, MayHaveKeysOfSixteenParts) {
    EXPECT_EQ(faultOf(times(15, "a.") + "a = 1\n" + times(15, "'a' . ") + "a = 2\n"), "");
    EXPECT_EQ(faultOf(times(16, "a.") + "a = 1"), "1:32 key of more than 16 parts");
    EXPECT_EQ(faultOf("[" + times(300'000, "a.") + "a]"), "1:33 key of more than 16 parts");
    EXPECT_EQ(faultOf("x = { " + times(16, "\"a\".") + "a = 1 }"), "1:70 key of more than 16 parts");
}

TEST(TomlShape, IsNotMadeByStringsAndComments) {
    const std::string deep = times(40, "[") + times(40, ".");
    EXPECT_EQ(faultOf("a = \"" + deep + "\"\nb = '" + deep + "'\n# " + deep), "");
    EXPECT_EQ(faultOf("a = \"\"\"" + deep + "\n\" \\\"\"\" " + deep + "\"\"\"\"\"\nb = ''''" + deep + "'''"),
              "");
    EXPECT_EQ(faultOf("a = \"\\\"" + deep + "\""), "");
}

// What looks like the inside of a string is none.
TEST(TomlShape, IsSeenBehindStrings) {
    const std::string deep = times(17, "[");
    for (const char* const before :
         {"a = \"\"\nb = ", "a = ''\nb = ", "a = \"\\\\\"\nb = ", "a = '\\'\nb = ", "a = \"\"\"\"\"\"\nb = ",
          "a = \"\"\"x\"\"\"\"\"\nb = ", "# \"\nb = ", "a = '''\\'''\nb = "})
        EXPECT_NE(faultOf(before + deep), "") << before;
}

TEST(TomlShape, NeedsUtf8) {
    EXPECT_EQ(faultOf("a = 1\nname = \"caf\xE9\""), "2:12 text that is not UTF-8");
}
