#include "services/console/Screen.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::TableLine;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr host::terminal::Size size{20, 3};

std::vector<TableLine> linesOf(const char* second) {
    return {{TableLine::Style::Heading, "one"},
            {TableLine::Style::Plain, second},
            {TableLine::Style::Bad, "three"}};
}

} // namespace

TEST(Screen, IsDrawnWholeAtFirst) {
    host::Screen screen(true);
    EXPECT_EQ(
        screen.draw(linesOf("two"), size),
        "\x1b[H\x1b[J\x1b[1;1H\x1b[1mone\x1b[0m\x1b[K\x1b[2;1Htwo\x1b[K\x1b[3;1H\x1b[31mthree\x1b[0m\x1b[K");
}

TEST(Screen, IsDrawnOnlyWhereItChanges) {
    host::Screen screen(true);
    screen.draw(linesOf("two"), size);
    EXPECT_EQ(screen.draw(linesOf("two"), size), "");
    EXPECT_EQ(screen.draw(linesOf("2"), size), "\x1b[2;1H2\x1b[K");
}

TEST(Screen, IsDrawnWholeInAnotherSizeAndWhenSomebodyElseHadIt) {
    host::Screen screen(true);
    screen.draw(linesOf("two"), size);
    EXPECT_THAT(screen.draw(linesOf("two"), {21, 3}), StartsWith("\x1b[H\x1b[J"));
    screen.forget();
    EXPECT_THAT(screen.draw(linesOf("two"), {21, 3}), StartsWith("\x1b[H\x1b[J"));
}

TEST(Screen, HasNoColoursWhereTheyAreNotWanted) {
    host::Screen screen(false);
    const std::string drawn = screen.draw(linesOf("two"), size);
    EXPECT_THAT(drawn, Not(HasSubstr("\x1b[31m")));
    EXPECT_THAT(drawn, HasSubstr("\x1b[1mthree"));
}

TEST(Screen, ShowsTheSelectedRowReversed) {
    host::Screen screen(true);
    EXPECT_THAT(screen.draw({{TableLine::Style::Plain, "x", true}}, size), HasSubstr("\x1b[7mx\x1b[0m"));
}
