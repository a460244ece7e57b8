#include "site/SiteFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace std::chrono_literals;

namespace {

const std::string line = "[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://h:5050\"\n"
                         "[[channel.rtu]]\nid = 1\nstation = 5\n";

host::LoadedSite read(const std::string& history, const std::string& file = "plant/site.toml") {
    return host::readSite(line + history, file, [](const std::string&) { return text::FileText(); });
}

// Without those about the line.
std::vector<std::string> findings(const std::string& history) {
    const host::LoadedSite loaded = read(history);
    std::vector<std::string> texts;
    for (const host::Finding& finding : loaded.findings.all())
        if (finding.place.line > 7)
            texts.push_back(toText(finding));
    return texts;
}

} // namespace

TEST(HistoryTable, RecordsNothingWhenItIsLeftOut) {
    EXPECT_FALSE(read("").site.history);
}

TEST(HistoryTable, NamesAFileBesideTheSiteFile) {
    EXPECT_EQ(read("[history]\nurl = \"sqlite:history.db\"\n").site.history->file, "plant/history.db");
    EXPECT_EQ(read("[history]\nurl = \"sqlite:history.db\"\n", "site.toml").site.history->file, "history.db");
    EXPECT_EQ(read("[history]\nurl = \"sqlite:/var/lib/h.db\"\n").site.history->file, "/var/lib/h.db");
}

TEST(HistoryTable, KeepsFourHundredDaysAndTwoGigabytesUnlessItSaysOtherwise) {
    const auto usual = read("[history]\nurl = \"sqlite:h.db\"\n").site.history;
    EXPECT_EQ(usual->keep, 400 * 24h);
    EXPECT_EQ(usual->maxSize, 2'000'000'000U);
    const std::string told = "[history]\nurl = \"sqlite:h.db\"\nkeep = \"30d\"\nmax_size = \"50MB\"\n";
    EXPECT_EQ(read(told).site.history->keep, 30 * 24h);
    EXPECT_EQ(read(told).site.history->maxSize, 50'000'000U);
    EXPECT_THAT(findings(told), IsEmpty());
}

TEST(HistoryTable, TellsWhatIsWrong) {
    EXPECT_THAT(findings("[history]\nkeep = \"0d\"\nmax_size = \"999kB\"\npath = \"h.db\"\n"),
                ElementsAre(HasSubstr("8:1: error: "),
                            HasSubstr("9:8: error: keep \"0d\" is no time above 0"),
                            HasSubstr("10:12: error: max_size \"999kB\" is no size from 1 MB on"),
                            HasSubstr("path")));
    EXPECT_THAT(findings("[history]\nurl = \"history.db\"\n"),
                ElementsAre(HasSubstr("9:7: error: url \"history.db\" names no place for a history")));
    EXPECT_THAT(findings("[history]\nurl = \"sqlite:\"\n"), ElementsAre(HasSubstr("names no place")));
}

TEST(HistoryTable, TellsThatThereIsNoPostgresqlYet) {
    EXPECT_THAT(findings("[history]\nurl = \"postgresql://db/plant\"\n"),
                ElementsAre(HasSubstr("this sbus-host cannot record into PostgreSQL")));
}
