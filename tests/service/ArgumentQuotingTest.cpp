#include "windows/ArgumentQuoting.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

using host::joinArguments;
using host::quoteArgument;

namespace {

using Words = std::vector<std::string>;

// As programs take their command line apart on Windows, by the rules of CommandLineToArgvW: in the program's
// name nothing is special but quotation marks; behind it 2n backslashes and a mark are n backslashes and the
// mark's work, 2n+1 are n and the mark itself, and backslashes elsewhere are themselves.
Words takenApart(const std::string& line) {
    Words words(1);
    std::size_t at = 0;
    bool inQuotes = false;
    for (; at < line.size() && (inQuotes || line[at] != ' '); ++at)
        if (line[at] == '"')
            inQuotes = !inQuotes;
        else
            words.back() += line[at];
    while (at < line.size()) {
        while (at < line.size() && line[at] == ' ')
            ++at;
        if (at == line.size())
            break;
        words.emplace_back();
        for (inQuotes = false; at < line.size() && (inQuotes || line[at] != ' ');) {
            std::size_t backslashes = 0;
            for (; at < line.size() && line[at] == '\\'; ++at)
                ++backslashes;
            const bool isMark = at < line.size() && line[at] == '"';
            words.back().append(isMark ? backslashes / 2 : backslashes, '\\');
            if (!isMark) {
                if (at < line.size() && (inQuotes || line[at] != ' '))
                    words.back() += line[at++];
                continue;
            }
            ++at;
            if (backslashes % 2 == 1)
                words.back() += '"';
            else
                inQuotes = !inQuotes;
        }
    }
    return words;
}

} // namespace

TEST(ArgumentQuoting, PutsEveryWordInQuotes) {
    EXPECT_EQ(
        joinArguments({R"(C:\Program Files\sbus\sbus-host.exe)", "service", R"(D:\plant one\site.toml)"}),
        R"("C:\Program Files\sbus\sbus-host.exe" "service" "D:\plant one\site.toml")");
}

TEST(ArgumentQuoting, DoublesBackslashesInFrontOfAQuotationMarkAlone) {
    EXPECT_EQ(quoteArgument(R"(D:\logs\)"), R"("D:\logs\\")");
    EXPECT_EQ(quoteArgument(R"(a\\b)"), R"("a\\b")");
    EXPECT_EQ(quoteArgument(R"(say "so")"), R"("say \"so\"")");
    EXPECT_EQ(quoteArgument(R"(\")"), R"("\\\"")");
    EXPECT_EQ(quoteArgument(""), R"("")");
}

// The reader of this test, by examples that Microsoft's documentation gives.
TEST(ArgumentQuoting, IsReadBackByTheRulesOfTheSystem) {
    EXPECT_EQ(takenApart(R"(p "abc" d e)"), (Words{"p", "abc", "d", "e"}));
    EXPECT_EQ(takenApart(R"(p a\\b d"e f"g h)"), (Words{"p", R"(a\\b)", "de fg", "h"}));
    EXPECT_EQ(takenApart(R"(p a\\\"b c d)"), (Words{"p", R"(a\"b)", "c", "d"}));
    EXPECT_EQ(takenApart(R"(p a\\\\"b c" d e)"), (Words{"p", R"(a\\b c)", "d", "e"}));
}

TEST(ArgumentQuoting, GivesEveryProgramTheWordsThatWereMeant) {
    std::mt19937 random(14);
    const std::string letters = R"(\\\"" ax)";
    for (int round = 0; round < 20'000; ++round) {
        Words words{R"(C:\Program Files\host.exe)"};
        for (auto count = random() % 4; count > 0; --count) {
            words.emplace_back();
            for (auto length = random() % 8; length > 0; --length)
                words.back() += letters[random() % letters.size()];
        }
        ASSERT_EQ(takenApart(joinArguments(words)), words) << joinArguments(words);
    }
}
