#include "symbols/SymbolImport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

struct Imported {
    std::string table;
    std::vector<std::string> leftOut;
    std::vector<std::string> findings;
};

Imported import(const std::string& list, const std::string& columns = {}) {
    host::SymbolImport import(host::parseColumns(columns).columns);
    host::Findings findings;
    import.read(list, "s.csv", findings);
    Imported imported{pointTableText(import.points()), leftOutLines(import.leftOut()), {}};
    for (const host::Finding& finding : findings.all())
        imported.findings.push_back(toText(finding));
    return imported;
}

const std::string head = "id,name,kind,address,format,description\n";

} // namespace

TEST(SymbolImport, KeepsKindsAndGroupsAndComments) {
    const Imported imported = import("Symbol,Type,Address,Comment\nPlant.Pump1.Run,O,32,\"runs, left\"\n"
                                     "Plant.Level,R FLOAT,300,\"two\nlines\"\n");
    EXPECT_EQ(imported.table, head + "1,Plant.Pump1.Run,status,O32,,\"runs, left\"\n"
                                     "2,Plant.Level,analog,R300,float,two lines\n");
    EXPECT_THAT(imported.leftOut, IsEmpty());
    EXPECT_THAT(imported.findings, IsEmpty());
}

TEST(SymbolImport, MakesAPointOfEachElementOfARange) {
    EXPECT_EQ(import("Name;Type;Address\nLevels;R;10..12\n").table,
              head + "1,Levels.0,analog,R10,,\n2,Levels.1,analog,R11,,\n3,Levels.2,analog,R12,,\n");
}

TEST(SymbolImport, FindsItsColumnsByHeadsInFourLanguages) {
    for (const char* const heads :
         {"Comment,Address,Type,Symbol", "Kommentar;Adresse;Typ;Symbol", "Commentaire\tAdresse\tType\tNom",
          "COMMENTO;INDIRIZZO;TIPO;NOME", "Bemerkung;ADRESSE;TYP;Bezeichner"}) {
        std::string list = std::string("Project;1,2,3\n\n") + heads + "\nc,5,R,A\n";
        const std::size_t row = list.rfind("c,5,R,A");
        const char separator = heads[std::string(heads).find_first_of(",;\t")];
        std::replace(list.begin() + static_cast<std::ptrdiff_t>(row), list.end(), ',', separator);
        EXPECT_EQ(import(list).table, head + "1,A,analog,R5,,c\n") << heads;
    }
}

TEST(SymbolImport, TakesTheColumnsThatItIsTold) {
    EXPECT_EQ(import("x,A,R,5\nx,B,F,6\n", "symbol=2,type=3,address=4").table,
              head + "1,A,analog,R5,,\n2,B,status,F6,,\n");
    EXPECT_EQ(import("Signal;Wo\nA;R 5\n", "symbol=signal,address=Wo").table, head + "1,A,analog,R5,,\n");
    EXPECT_THAT(import("a,b\nc,d\n").findings,
                ElementsAre(HasSubstr(
                    "s.csv:1:1: error: no row has heads for symbol and address; give the columns")));
    EXPECT_THAT(host::parseColumns("size=3").fault,
                HasSubstr("\"size=3\" names none of symbol, type, address"));
    EXPECT_THAT(host::parseColumns("symbol=").fault, HasSubstr("\"symbol=\" names no column"));
}

TEST(SymbolImport, TellsWhatItLeavesOut) {
    const Imported imported =
        import("Symbol;Type;Address\nA;R;5\nA;R;6\nText;TEXT;1\n;R;7\nNone;R;\n\"B\tC\";R;1\n;;\n"
               "Many;R;8..9\nMany.1;R;10\n");
    EXPECT_EQ(imported.table, head + "1,A,analog,R5,,\n2,Many.0,analog,R8,,\n3,Many.1,analog,R9,,\n");
    EXPECT_THAT(imported.leftOut,
                ElementsAre("s.csv:3: left out \"A\": its name is taken by one before it",
                            "s.csv:4: left out \"Text\": kind \"TEXT\" is not polled",
                            "s.csv:5: left out: it has no name",
                            "s.csv:6: left out \"None\": it has no address",
                            "s.csv:7: left out \"B\\x09C\": its name holds a control character",
                            "s.csv:10: left out \"Many.1\": its name is taken by one before it"));
}

TEST(SymbolImport, SumsUpWhatIsLeftOutForOneReason) {
    std::string list = "Symbol;Type;Address\n";
    for (int i = 0; i < 100; ++i)
        list += "T" + std::to_string(i) + ";TEXT;1\n";
    const std::vector<std::string> lines = import(list).leftOut;
    ASSERT_THAT(lines, SizeIs(6));
    EXPECT_EQ(lines.back(), "95 more left out: kind \"TEXT\" is not polled");
    std::string mistaken = "Symbol;Type;Address\n";
    for (int i = 0; i < 100; ++i)
        mistaken += "A;word " + std::to_string(i) + ";1\n";
    ASSERT_THAT(import(mistaken).leftOut, SizeIs(11));
    EXPECT_EQ(import(mistaken).leftOut.back(), "90 more left out for other reasons");
}

TEST(SymbolImport, EndsBeforeRangesUseUpTheMemory) {
    std::string list = "Symbol;Address\n";
    for (int i = 0; i < 100; ++i)
        list += "N" + std::to_string(i) + ";R 0..65535\n";
    EXPECT_EQ(import(list).leftOut.front(), "s.csv:32: left out \"N30\": there are more than 2000000 points");
}
