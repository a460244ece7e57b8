#include "site/CsvReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::CsvRow;
using host::Findings;
using testing::ElementsAre;

namespace {

std::vector<std::string> texts(const CsvRow& row) {
    std::vector<std::string> result;
    for (const host::Cell& cell : row.cells)
        result.push_back(cell.text);
    return result;
}

std::vector<CsvRow> read(const std::string& text, Findings& findings, char separator = ',') {
    host::CsvReader reader(text, separator, "points.csv", findings);
    std::vector<CsvRow> rows;
    for (CsvRow row; reader.next(row);)
        rows.push_back(row);
    return rows;
}

std::vector<CsvRow> read(const std::string& text) {
    Findings findings;
    std::vector<CsvRow> rows = read(text, findings);
    EXPECT_TRUE(findings.all().empty());
    return rows;
}

} // namespace

TEST(CsvReader, CutsRowsAndCells) {
    const auto rows = read("id,name\r\n1, two words ,\n\n2\n");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_THAT(texts(rows[0]), ElementsAre("id", "name"));
    EXPECT_THAT(texts(rows[1]), ElementsAre("1", "two words", ""));
    EXPECT_THAT(texts(rows[2]), ElementsAre("2"));
}

// A row is read into the one before.
TEST(CsvReader, LeavesNothingOfALongerRowInAShorterOne) {
    const auto rows = read("a,b,ccc\nd,\n,,,e\n");
    EXPECT_THAT(texts(rows[1]), ElementsAre("d", ""));
    EXPECT_THAT(texts(rows[2]), ElementsAre("", "", "", "e"));
}

TEST(CsvReader, TakesCommasQuotesAndLineEndsInsideQuotes) {
    const auto rows = read("\"a,b\",\"say \"\"on\"\"\",\"two\nlines\" , \" kept \"\n");
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_THAT(texts(rows[0]), ElementsAre("a,b", "say \"on\"", "two\nlines", " kept "));
}

TEST(CsvReader, CutsAtItsSeparatorAlone) {
    Findings findings;
    EXPECT_THAT(texts(read("a;\"b;c\";1,5\n", findings, ';')[0]), ElementsAre("a", "b;c", "1,5"));
    EXPECT_THAT(texts(read("a\t \t\"b\tc\"\t\t d \n", findings, '\t')[0]),
                ElementsAre("a", "", "b\tc", "", "d"));
    EXPECT_TRUE(findings.all().empty());
}

TEST(CsvReader, PassesOverRowsWithoutAnything) {
    const auto rows = read(",,,\n \n\"\",\na,b\n,,");
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].start.line, 4U);
}

TEST(CsvReader, KnowsCommentsAndLeavesTheirQuotesAlone) {
    const auto rows = read("# a, \"b\n\"# c, d\",\n1,#2\n");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_TRUE(rows[0].isComment());
    EXPECT_THAT(texts(rows[0]), ElementsAre("# a", "\"b"));
    EXPECT_TRUE(rows[1].isComment());
    EXPECT_FALSE(rows[2].isComment());
}

TEST(CsvReader, PlacesCellsByLineAndCharacter) {
    const auto rows = read("id,name\n7,\"Brücke\",x\n");
    EXPECT_EQ(rows[1].cells[1].spot.line, 2U);
    EXPECT_EQ(rows[1].cells[1].spot.column, 3U);
    EXPECT_EQ(rows[1].cells[2].spot.column, 12U);
    EXPECT_EQ(rows[1].end.column, 13U);
}

TEST(CsvReader, TellsAQuoteWithoutEndAndTextBehindOne) {
    Findings findings;
    read("a,\"b\"c\nd,\"e", findings);
    ASSERT_EQ(findings.all().size(), 2U);
    EXPECT_EQ(toText(findings.all()[0]).substr(0, 39), "points.csv:1:6: error: text behind a cl");
    EXPECT_EQ(toText(findings.all()[1]).substr(0, 39), "points.csv:2:3: error: quote without an");
}
