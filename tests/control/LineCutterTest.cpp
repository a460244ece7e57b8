#include "services/control/LineCutter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using host::LineCutter;

namespace {

// What comes out of a cutter for lines of at most 8 bytes when the pieces go in one after the other.
std::vector<std::string> cut(const std::vector<const char*>& pieces) {
    LineCutter cutter(8);
    std::vector<std::string> lines;
    for (const char* const piece : pieces) {
        cutter.append(piece);
        while (const auto line = cutter.next())
            lines.push_back(line->isTooLong ? "too long" : line->text.toStdString());
    }
    return lines;
}

using Lines = std::vector<std::string>;

} // namespace

TEST(LineCutter, CutsAtEachLineEnd) {
    EXPECT_EQ(cut({"one\ntwo\r\n\nrest"}), (Lines{"one", "two", ""}));
}

TEST(LineCutter, JoinsWhatComesInPieces) {
    EXPECT_EQ(cut({"o", "n", "e\nt", "wo", "\n"}), (Lines{"one", "two"}));
}

TEST(LineCutter, TakesALineOfExactlyItsLimit) {
    EXPECT_EQ(cut({"12345678\nx\n"}), (Lines{"12345678", "x"}));
}

TEST(LineCutter, TellsALineThatIsTooLongOnceAndGoesOnBehindIt) {
    EXPECT_EQ(cut({"123456789", "0123456", "7890\nnext\n"}), (Lines{"too long", "next"}));
    EXPECT_EQ(cut({"123456789\nnext\n"}), (Lines{"too long", "next"}));
}

TEST(LineCutter, TellsEachOfSeveralLinesThatAreTooLong) {
    EXPECT_EQ(cut({"123456789", "0\n123456789\nx\n"}), (Lines{"too long", "too long", "x"}));
}

TEST(LineCutter, TellsALineAsTooLongWithItsFirstByteTooMany) {
    LineCutter cutter(8);
    cutter.append("12345678");
    EXPECT_FALSE(cutter.hasLine());
    cutter.append("9");
    EXPECT_TRUE(cutter.hasLine());
    EXPECT_TRUE(cutter.next()->isTooLong);
    EXPECT_FALSE(cutter.hasLine());
}

TEST(LineCutter, CutsManyEmptyLinesWithoutEnd) {
    LineCutter cutter(65'536);
    cutter.append(QByteArray(65'536, '\n'));
    int lines = 0;
    while (cutter.next())
        ++lines;
    EXPECT_EQ(lines, 65'536);
}
