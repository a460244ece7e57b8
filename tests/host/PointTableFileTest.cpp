#include "TableText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using host::Findings;
using host::Point;
using host::PointKind;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const std::string allColumns = "id,name,kind,address,format,value,second_address,second_value,pulse_ms\n";

} // namespace

TEST(PointTableFile, ReadsPointsByTheirColumnNames) {
    const TableText table =
        readTable("kind,address,id,name,format\nstatus,I5,1,DOOR,\nanalog,r010,2,FLOW,float\n");
    EXPECT_TRUE(table.findings.empty());
    ASSERT_EQ(table.points.size(), 2U);
    EXPECT_EQ(table.points[0].kind, PointKind::Status);
    EXPECT_EQ(toText(table.points[0].address), "I5");
    EXPECT_EQ(table.points[1].name, "FLOW");
    EXPECT_EQ(toText(table.points[1].address), "R10");
    EXPECT_EQ(*table.points[1].writtenAddress, "r010");
    EXPECT_EQ(table.points[0].writtenAddress, nullptr); // it is the plain form
    EXPECT_EQ(table.points[1].spot.line, 3U);
    EXPECT_TRUE(table.points[1].isFloat);
}

TEST(PointTableFile, ReadsWhatCommandsWrite) {
    const TableText table = readTable(allColumns + "1,VALVE,status,O40,,2,o041,3,500\n");
    EXPECT_TRUE(table.findings.empty());
    ASSERT_EQ(table.points.size(), 1U);
    EXPECT_EQ(table.points[0].value, 2U);
    EXPECT_EQ(toText(*table.points[0].secondAddress), "O41");
    EXPECT_EQ(table.points[0].secondValue, 3U);
    EXPECT_EQ(table.points[0].pulseMs, 500U);
}

TEST(PointTableFile, TellsARowWithAColumnTooFewAtItsEnd) {
    const TableText table = readTable("id,name,kind,address\n1,A,status\n2,B,status,I1,x\n3,C,status,I2\n");
    EXPECT_THAT(table.findings,
                ElementsAre(HasSubstr("p.csv:2:11: error: row with 3 columns, where the first row names 4"),
                            HasSubstr("p.csv:3:15: error: row with 5 columns, where the first row names 4")));
    EXPECT_EQ(table.points.size(), 1U);
}

TEST(PointTableFile, NeedsItsFourColumns) {
    const TableText table = readTable("id,name,colour,id\n1,A,red,1\n");
    EXPECT_THAT(table.findings, ElementsAre(HasSubstr("p.csv:1:1: error: no column \"kind\", \"address\"; "),
                                            HasSubstr("p.csv:1:9: error: unknown column \"colour\""),
                                            HasSubstr("p.csv:1:16: error: column \"id\" stands twice")));
    EXPECT_THAT(readTable("").findings, ElementsAre(HasSubstr("p.csv:1:1: error: empty point table")));
}

TEST(PointTableFile, TellsKindAndMediaThatDoNotFit) {
    const TableText table =
        readTable("id,name,kind,address\n1,A,status,R1\n2,B,analog,F1\n3,C,digital,I1\n4,D,analog,X1\n");
    EXPECT_THAT(table.findings,
                ElementsAre(HasSubstr("p.csv:2:12: error: address R1 does not fit kind status"),
                            HasSubstr("p.csv:3:12: error: address F1 does not fit kind analog"),
                            HasSubstr("p.csv:4:5: error: kind \"digital\" is not known"),
                            HasSubstr("p.csv:5:12: error: address \"X1\" fits no media")));
}

TEST(PointTableFile, TakesFloatsForRegistersAlone) {
    const TableText table =
        readTable("id,name,kind,address,format\n1,A,analog,T1,float\n2,B,analog,R1,real\n");
    EXPECT_THAT(table.findings, ElementsAre(HasSubstr("p.csv:2:15: error: format float on T1"),
                                            HasSubstr("p.csv:3:15: error: format \"real\" is not known")));
}

TEST(PointTableFile, TellsCommandsThatCannotBe) {
    const TableText table =
        readTable(allColumns + "1,A,status,I1,,1,,,\n2,B,analog,R1,,,O1,,\n3,C,status,O1,,256,,,0\n"
                               "4,D,status,O1,,,,1,\n5,E,status,O1,,,I1,,\n");
    EXPECT_THAT(table.findings,
                ElementsAre(HasSubstr("p.csv:2:16: error: value on I1"),
                            HasSubstr("p.csv:3:17: error: second_address on R1"),
                            HasSubstr("p.csv:4:16: error: value \"256\" is out of range"),
                            HasSubstr("p.csv:4:22: error: pulse_ms \"0\" is out of range"),
                            HasSubstr("p.csv:5:18: error: second_value without second_address"),
                            HasSubstr("p.csv:6:17: error: second_address I1 cannot be switched")));
}

TEST(PointTableFile, TellsEveryFaultOfARow) {
    const TableText table = readTable("id,name,kind,address\nx,,status,\n");
    EXPECT_THAT(table.findings, ElementsAre(HasSubstr("p.csv:2:1: error: id \"x\""),
                                            HasSubstr("p.csv:2:3: error: point without name"),
                                            HasSubstr("p.csv:2:11: error: point without address")));
    EXPECT_TRUE(table.points.empty());
}

TEST(PointTableFile, TellsAnIdTakenTwiceWhateverElseIsWrongWithItsRows) {
    EXPECT_THAT(readTable("id,name,kind,address\n3,A,status,X5\n3,B,status,F5\n").findings,
                ElementsAre(HasSubstr("p.csv:2:12: error: address \"X5\" fits no media"),
                            HasSubstr("p.csv:3:1: error: point id 3 is already taken by \"A\" in line 2")));
    EXPECT_THAT(readTable("id,name,kind,address\n3,,status,F1\n3,B,status\n").findings,
                ElementsAre(HasSubstr("p.csv:2:3: error: point without name"),
                            HasSubstr("p.csv:3:1: error: point id 3 is already taken in line 2"),
                            HasSubstr("p.csv:3:11: error: row with 3 columns")));
    EXPECT_THAT(
        readTable("id,name,kind,address\nx,A,status,F1\nx,B,status,F2\n").findings,
        ElementsAre(HasSubstr("p.csv:2:1: error: id \"x\""), HasSubstr("p.csv:3:1: error: id \"x\"")));
}

TEST(PointTableFile, LeavesTheNumbersOfHiddenPointsFree) {
    EXPECT_TRUE(readTable("id,name,kind,address\n2147483647,A,status,I1\n").findings.empty());
    EXPECT_EQ(readTable("id,name,kind,address\n2147483648,A,status,I1\n").findings.size(), 1U);
}

TEST(PointTableFile, TakesAnySeparatorAndAnyCase) {
    for (const char separator : {',', ';', '\t'}) {
        std::string text = "ID|Name|KIND|Address|Format|Pulse_MS\n1|A|Status|O1||500\n2|B|ANALOG|R1|Float|\n";
        std::replace(text.begin(), text.end(), '|', separator);
        for (const char* const mark : {"", "\xEF\xBB\xBF", "sep=;\n"}) {
            if (*mark == 's' && separator != ';')
                continue;
            const TableText table = readTable(mark + text);
            EXPECT_THAT(table.findings, IsEmpty()) << separator;
            ASSERT_EQ(table.points.size(), 2U);
            EXPECT_EQ(table.points[0].pulseMs, 500U);
            EXPECT_TRUE(table.points[1].isFloat);
        }
    }
}

// A comma may be part of a name, and more frequent than what separates the cells.
TEST(PointTableFile, FindsTheSeparatorByTheHeadsOfTheColumns) {
    const TableText table =
        readTable("#a,b,c,d,e,f;id;name;kind;address\n;1;Pump, old, red, left, big, loud;status;O1\n");
    EXPECT_THAT(table.findings, IsEmpty());
    EXPECT_EQ(table.points.at(0).name, "Pump, old, red, left, big, loud");
}

TEST(PointTableFile, TakesDecimalCommasWhereCommasSeparateNothing) {
    const TableText table =
        readTable("id;name;kind;address;value\n1,0;A;status;O1;2,00\n2.0;B;status;O2;\n3;C;status;O3;1,5\n");
    EXPECT_THAT(table.findings,
                ElementsAre(HasSubstr("p.csv:4:15: error: value \"1.5\" is out of range or no")));
    ASSERT_EQ(table.points.size(), 2U);
    EXPECT_EQ(table.points[0].id, 1U);
    EXPECT_EQ(table.points[0].value, 2U);
}

// It may stand for a thousand.
TEST(PointTableFile, RefusesANumberWithThreeDecimals) {
    EXPECT_THAT(readTable("id;name;kind;address;pulse_ms\n1;A;status;O1;1.000\n").findings,
                ElementsAre(HasSubstr("p.csv:2:15: error: pulse_ms \"1.000\" is out of range or no number")));
}

TEST(PointTableFile, PassesOverCommentsAndEmptyRowsAndNamelessColumns) {
    const TableText table = readTable("# made by hand, \"today\n,,,,,\n#,id,name,kind,address,\n,,,,,\n"
                                      "\"# first floor, pumps\",,,,,\n1,7,A,status,I1,\n");
    EXPECT_THAT(table.findings, IsEmpty());
    ASSERT_EQ(table.points.size(), 1U);
    EXPECT_EQ(table.points[0].id, 7U);
    EXPECT_EQ(table.points[0].spot.line, 6U);
    EXPECT_THAT(readTable("id,name,kind,address,\n1,A,status,I1,x\n").findings,
                ElementsAre(HasSubstr("p.csv:2:15: error: cell in a column without a name")));
}

TEST(PointTableFile, SaysThatItReadWindows1252) {
    const TableText table = readTable("id;name;kind;address\n1;Br\xFC"
                                      "cke;status;I1\n");
    EXPECT_THAT(table.findings,
                ElementsAre("p.csv:2:5: note: read as Windows-1252, because it is not UTF-8"));
    EXPECT_EQ(table.points.at(0).name, "Brücke");
}

TEST(PointTableFile, ReadsUtf16) {
    std::string bytes = "\xFF\xFE";
    for (const char letter : std::string("id\tname\tkind\taddress\r\n1\tA\tstatus\tI1\r\n")) {
        bytes += letter;
        bytes += '\0';
    }
    const TableText table = readTable(bytes);
    EXPECT_THAT(table.findings, IsEmpty());
    EXPECT_EQ(table.points.at(0).name, "A");
}

TEST(PointTableFile, RefusesControlCharacters) {
    EXPECT_THAT(readTable("id,name,kind,address\n1,A\x1B[2J,status,I1\n").findings,
                ElementsAre(HasSubstr("p.csv:2:3: error: name with control character U+001B: \"A\\x1B[2J\""),
                            HasSubstr("p.csv:2:4: error: control character U+001B")));
    EXPECT_THAT(readTable("id,name,kind,address\n1,\"A\nB\",status,I1\n").findings,
                ElementsAre(HasSubstr("p.csv:2:3: error: name with control character U+000A: \"A\\x0AB\"")));
}

TEST(PointTableFile, TellsAFileThatIsNoTableInOneLine) {
    std::string prose;
    for (int i = 0; i < 1'000; ++i)
        prose += "Dear colleagues, here are the points; all of them\n";
    EXPECT_THAT(
        readTable(prose).findings,
        ElementsAre(AllOf(HasSubstr("p.csv:1:1: error: no column of a point table in the first row: \"Dear"),
                          HasSubstr("id, name, kind and address are needed"))));
    EXPECT_THAT(
        readTable("PK\x03\x04 and more").findings,
        ElementsAre(HasSubstr("p.csv: error: is a workbook or another packed file, not text; save the "
                              "table as comma-separated values (CSV)")));
}

TEST(PointTableFile, ShowsTwentyErrorsAndCountsTheOthers) {
    std::string rows = "id,name,kind,address\n";
    for (int i = 0; i < 100'000; ++i)
        rows += std::to_string(i) + ",P" + std::to_string(i) + ",digital,I1\n";
    const TableText table = readTable(rows);
    ASSERT_EQ(table.findings.size(), 21U);
    EXPECT_THAT(table.findings.front(), HasSubstr("p.csv:2:6: error: kind \"digital\""));
    EXPECT_EQ(table.findings.back(),
              "p.csv: error: 99980 more errors in this file; correct those above first");
}
