#include "TableInSite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace std::chrono_literals;

TEST(HistoryTable, RecordsNothingWhenItIsLeftOut) {
    EXPECT_FALSE(readWithTable("").site.history);
}

TEST(HistoryTable, NamesAFileBesideTheSiteFile) {
    EXPECT_EQ(readWithTable("[history]\nurl = \"sqlite:history.db\"\n", "plant/site.toml").site.history->file,
              "plant/history.db");
    EXPECT_EQ(readWithTable("[history]\nurl = \"sqlite:history.db\"\n").site.history->file, "history.db");
    EXPECT_EQ(
        readWithTable("[history]\nurl = \"sqlite:/var/lib/h.db\"\n", "plant/site.toml").site.history->file,
        "/var/lib/h.db");
}

TEST(HistoryTable, KeepsFourHundredDaysAndTwoGigabytesUnlessItSaysOtherwise) {
    const auto usual = readWithTable("[history]\nurl = \"sqlite:h.db\"\n").site.history;
    EXPECT_EQ(usual->keep, 400 * 24h);
    EXPECT_EQ(usual->maxSize, 2'000'000'000U);
    const std::string told = "[history]\nurl = \"sqlite:h.db\"\nkeep = \"30d\"\nmax_size = \"50MB\"\n";
    EXPECT_EQ(readWithTable(told).site.history->keep, 30 * 24h);
    EXPECT_EQ(readWithTable(told).site.history->maxSize, 50'000'000U);
    EXPECT_THAT(findingsOfTable(told), IsEmpty());
}

TEST(HistoryTable, TellsWhatIsWrong) {
    EXPECT_THAT(findingsOfTable("[history]\nkeep = \"0d\"\nmax_size = \"999kB\"\npath = \"h.db\"\n"),
                ElementsAre(HasSubstr("8:1: error: "),
                            HasSubstr("9:8: error: keep \"0d\" is no time above 0"),
                            HasSubstr("10:12: error: max_size \"999kB\" is no size from 1 MB on"),
                            HasSubstr("path")));
    EXPECT_THAT(findingsOfTable("[history]\nurl = \"history.db\"\n"),
                ElementsAre(HasSubstr("9:7: error: url \"history.db\" names no place for a history")));
    EXPECT_THAT(findingsOfTable("[history]\nurl = \"sqlite:\"\n"), ElementsAre(HasSubstr("names no place")));
}

TEST(HistoryTable, TellsThatThereIsNoPostgresqlYet) {
    EXPECT_THAT(findingsOfTable("[history]\nurl = \"postgresql://db/plant\"\n"),
                ElementsAre(HasSubstr("this sbus-host cannot record into PostgreSQL")));
}
