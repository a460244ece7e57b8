#include "services/history/HistoryWriter.h"

#include "HistoryRows.h"
#include "SmallSite.h"

#include <QDateTime>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using host::HistorySettings;
using host::HistoryWriter;
using host::Severity;
using host::ValueStore;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t start = 1'700'000'000'000;

// Numbers in the driver's records: RUN 0, FLOW 1, LEVEL 2. Times are those since `start`.
class HistoryWriterTest : public testing::Test {
protected:
    HistoryWriterTest() { settings.file = folder.filePath(QStringLiteral("history.db")).toStdString(); }

    void publish(unsigned number, double value, std::int64_t ms, PointQuality quality = PointQuality::Good) {
        const CMidTime stamp(QDateTime::fromMSecsSinceEpoch(start + ms), 0);
        store->publishPoints(4, 7, {PointUpdate{false, number, value, stamp, quality}});
    }
    // Another one, whose points were never read.
    void startHost() { store = std::make_unique<ValueStore>(site); }
    std::unique_ptr<HistoryWriter> makeWriter(std::int64_t beginMs = 0) {
        return std::make_unique<HistoryWriter>(
            *store, settings, start + beginMs,
            [this](const std::string& text, Severity) { told.push_back(text); });
    }
    static HistoryWriter::Moment at(std::int64_t ms, std::int64_t steadyMs) {
        return {start + ms, std::chrono::steady_clock::time_point(std::chrono::hours(1)) +
                                std::chrono::milliseconds(steadyMs)};
    }
    static HistoryWriter::Moment at(std::int64_t ms) { return at(ms, ms); }
    Rows rows(const char* point) { return recordedRows(settings.file, point, start); }
    Runs runs() { return recordedRuns(settings.file, start); }
    void execute(const char* statement) const {
        SQLite::Database(settings.file, SQLite::OPEN_READWRITE).exec(statement);
    }

    const QTemporaryDir folder;
    const host::Site site = smallSite();
    std::unique_ptr<ValueStore> store = std::make_unique<ValueStore>(site);
    HistorySettings settings;
    std::vector<std::string> told;
};

} // namespace

TEST_F(HistoryWriterTest, RecordsEachChangeWithTimeAndValue) {
    const auto writer = makeWriter();
    writer->turn(at(0));
    publish(1, 1.5, 100);
    publish(2, 7, 150);
    publish(1, 1.5, 200);
    publish(1, 2.5, 300);
    writer->turn(at(1'000));
    EXPECT_THAT(rows("FLOW"), ElementsAre("100 good 1.5", "300 good 2.5"));
    EXPECT_THAT(rows("LEVEL"), ElementsAre("150 good 7"));
    EXPECT_THAT(rows("RUN"), IsEmpty());
    EXPECT_EQ(writer->counts().rows, 3U);
    EXPECT_EQ(writer->counts().lost, 0U);
}

TEST_F(HistoryWriterTest, RecordsNoValueOfAPointThatIsNotGood) {
    const auto writer = makeWriter();
    writer->turn(at(0));
    publish(1, 1.5, 100);
    store->publishPoints(4, 7, {PointUpdate{false, 1, 0, {}, PointQuality::Bad}});
    store->publishPoints(4, 7, {PointUpdate{false, 2, 0, {}, PointQuality::Refused}});
    writer->turn(at(1'000));
    ASSERT_EQ(rows("FLOW").size(), 2U);
    EXPECT_THAT(rows("FLOW")[1], HasSubstr(" bad -"));
    EXPECT_THAT(rows("LEVEL"), ElementsAre(HasSubstr(" refused -")));
}

TEST_F(HistoryWriterTest, CommitsOnceASecond) {
    const auto writer = makeWriter();
    writer->turn(at(0));
    publish(1, 1, 100);
    writer->turn(at(900));
    EXPECT_THAT(rows("FLOW"), IsEmpty());
    writer->turn(at(1'000));
    EXPECT_THAT(rows("FLOW"), ElementsAre("100 good 1"));
}

TEST_F(HistoryWriterTest, TellsUntilWhenEveryChangeWasRecorded) {
    auto writer = makeWriter();
    writer->turn(at(0));
    writer->turn(at(1'000));
    writer->turn(at(1'500));
    EXPECT_THAT(runs(), ElementsAre("0..1000"));
    writer->finish(at(1'700));
    EXPECT_THAT(runs(), ElementsAre("0..1700"));
}

TEST_F(HistoryWriterTest, GoesOnWithTheSameNumbersAfterAStart) {
    for (const std::int64_t begin : {0, 1'000}) {
        startHost();
        const auto writer = makeWriter(begin);
        writer->turn(at(begin + 50));
        publish(1, 1, begin + 20);
        writer->finish(at(begin + 500));
    }
    EXPECT_THAT(rows("FLOW"), ElementsAre("20 good 1", "1020 good 1"));
    EXPECT_THAT(runs(), ElementsAre("0..500", "1000..1500"));
    EXPECT_EQ(SQLite::Database(settings.file).execAndGet("SELECT count(*) FROM points").getInt(), 1);
}

TEST_F(HistoryWriterTest, KeepsPointsApartWhenTheSiteWasEdited) {
    auto writer = makeWriter();
    writer->turn(at(0));
    publish(1, 1, 100);
    writer->finish(at(200));
    host::Site edited = smallSite();
    edited.channels[0].rtus[0].points.erase(edited.channels[0].rtus[0].points.begin() + 1); // FLOW
    ValueStore other(edited);
    HistoryWriter next(other, settings, start + 300, [](const std::string&, Severity) {});
    next.turn(at(300));
    other.publishPoints(4, 7,
                        {PointUpdate{false, 1, 9, CMidTime(QDateTime::fromMSecsSinceEpoch(start + 400), 0),
                                     PointQuality::Good}});
    next.finish(at(500));
    EXPECT_THAT(rows("FLOW"), ElementsAre("100 good 1"));
    EXPECT_THAT(rows("LEVEL"), ElementsAre("400 good 9"));
}

TEST_F(HistoryWriterTest, MovesRowsToTheTableByPointWithoutLosingOrDoublingAny) {
    const auto writer = makeWriter();
    writer->turn(at(0));
    for (int second = 1; second <= 130; ++second) {
        publish(1, second, second * 1'000);
        publish(2, -second, second * 1'000);
        writer->turn(at(second * 1'000));
    }
    SQLite::Database file(settings.file);
    EXPECT_GE(file.execAndGet("SELECT count(*) FROM history").getInt(), 240);
    EXPECT_LE(file.execAndGet("SELECT count(*) FROM recent").getInt(), 20);
    EXPECT_EQ(file.execAndGet("SELECT count(*) FROM readings").getInt(), 260);
    const Rows flow = rows("FLOW");
    ASSERT_EQ(flow.size(), 130U);
    EXPECT_EQ(flow.front(), "1000 good 1");
    EXPECT_EQ(flow.back(), "130000 good 130");
}

TEST_F(HistoryWriterTest, CountsWhatTheRingHasLostAndBeginsANewRun) {
    const auto writer = makeWriter();
    writer->turn(at(0));
    publish(2, -1, 50);
    writer->turn(at(100));
    constexpr std::uint64_t changes = ValueStore::mostKeptChanges + 10;
    for (std::uint64_t i = 0; i < changes; ++i)
        publish(1, static_cast<double>(i), 200);
    writer->turn(at(10'000));
    EXPECT_EQ(writer->counts().lost, changes);
    EXPECT_EQ(writer->counts().rows, 3U);
    EXPECT_THAT(runs(), ElementsAre("0..100", "10000..10000"));
    EXPECT_THAT(rows("FLOW"), ElementsAre("10000 good " + std::to_string(changes - 1)));
    EXPECT_THAT(rows("LEVEL"), ElementsAre("50 good -1", "10000 good -1"));
}

TEST_F(HistoryWriterTest, TakesASleepOfTheComputerForAGap) {
    const auto writer = makeWriter();
    writer->turn(at(0, 0));
    publish(1, 1, 100);
    writer->turn(at(1'000, 1'000));
    writer->turn(at(3'601'000, 1'100));
    writer->finish(at(3'602'000, 2'100));
    EXPECT_THAT(runs(), ElementsAre("0..1000", "3601000..3602000"));
    EXPECT_THAT(rows("FLOW"), ElementsAre("100 good 1", "3601000 good 1"));
}

TEST_F(HistoryWriterTest, WaitsForAFolderAndLosesNothingMeanwhile) {
    const std::string below = folder.filePath(QStringLiteral("not-yet")).toStdString();
    settings.file = below + "/history.db";
    const auto writer = makeWriter();
    writer->turn(at(0));
    ASSERT_THAT(told, ElementsAre(HasSubstr("make its folder")));
    writer->turn(at(10'000));
    EXPECT_EQ(told.size(), 1U);
    EXPECT_EQ(writer->counts().failures, 2U);
    fs::create_directory(below);
    publish(1, 1, 15'000);
    writer->turn(at(20'000));
    writer->turn(at(21'000));
    EXPECT_THAT(told, ElementsAre(testing::_, HasSubstr("is written again; nothing is missing")));
    EXPECT_THAT(rows("FLOW"), ElementsAre("15000 good 1"));
    EXPECT_THAT(runs(), ElementsAre("0..21000"));
}

// Another program writes, and does not come to an end.
TEST_F(HistoryWriterTest, WritesWhatWaitedWhenTheFileIsFreeAgain) {
    const auto writer = makeWriter();
    writer->turn(at(0));
    writer->turn(at(1'000));
    {
        SQLite::Database other(settings.file, SQLite::OPEN_READWRITE);
        other.exec("BEGIN IMMEDIATE");
        publish(1, 1, 1'100);
        writer->turn(at(1'200));
        ASSERT_THAT(told, ElementsAre(HasSubstr("end the program that has it locked")));
        publish(1, 2, 2'000);
        writer->turn(at(3'000));
    }
    writer->turn(at(5'000));
    writer->turn(at(6'000));
    EXPECT_THAT(told, ElementsAre(testing::_, HasSubstr("is written again; nothing is missing")));
    EXPECT_THAT(rows("FLOW"), ElementsAre("1100 good 1", "2000 good 2"));
    EXPECT_THAT(runs(), ElementsAre("0..6000"));
}

TEST_F(HistoryWriterTest, MovesADamagedFileAsideAndBeginsANewOne) {
    auto writer = makeWriter();
    writer->turn(at(0));
    for (int i = 0; i < 100; ++i)
        publish(1, i, 100 + i);
    writer->finish(at(1'000));
    {
        std::fstream file(settings.file, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(4'096); // behind the header, which tells whose it is
        file << std::string(20'000, 'x');
    }
    startHost();
    writer = makeWriter(2'000);
    writer->turn(at(2'000));
    publish(1, 4, 2'100);
    writer->turn(at(3'000));
    publish(1, 5, 3'100);
    writer->finish(at(4'000));
    ASSERT_THAT(told, ElementsAre(HasSubstr("it is now " + settings.file + ".damaged-20231114T2213")));
    EXPECT_THAT(rows("FLOW"), ElementsAre("2100 good 4", "3100 good 5"));
    std::size_t aside = 0;
    for (const fs::directory_entry& one : fs::directory_iterator(folder.path().toStdString()))
        aside += one.path().string().find(".damaged-") != std::string::npos ? 1 : 0;
    EXPECT_EQ(aside, 1U) << "without its log, which was empty";
}

TEST_F(HistoryWriterTest, LeavesAFileAloneThatIsNoHistory) {
    std::ofstream(settings.file) << "[[channel]]\nid = 1\n" << std::string(200, '#');
    const auto writer = makeWriter();
    writer->turn(at(0));
    EXPECT_THAT(told, ElementsAre(HasSubstr("it is no history: name another file")));
    EXPECT_TRUE(fs::exists(settings.file));
}

TEST_F(HistoryWriterTest, LeavesADatabaseOfOthersAlone) {
    SQLite::Database(settings.file, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec("CREATE TABLE t(a)");
    const auto writer = makeWriter();
    writer->turn(at(0));
    EXPECT_THAT(told, ElementsAre(HasSubstr("is a database, but no history")));
    EXPECT_EQ(SQLite::Database(settings.file).execAndGet("SELECT count(*) FROM sqlite_master").getInt(), 1);
}

TEST_F(HistoryWriterTest, RefusesAFileOfANewerVersion) {
    makeWriter()->finish(at(0));
    execute("PRAGMA user_version = 2");
    const auto writer = makeWriter();
    writer->turn(at(1'000));
    EXPECT_THAT(told, ElementsAre(HasSubstr("was written by a newer version of this program")));
    EXPECT_EQ(SQLite::Database(settings.file).execAndGet("SELECT count(*) FROM runs").getInt(), 1);
}

TEST_F(HistoryWriterTest, BeginsANewFileWhenItsOwnWasRemoved) {
    const auto writer = makeWriter();
    writer->turn(at(0));
    publish(1, 1, 100);
    writer->turn(at(1'000));
    for (const char* const part : {"", "-wal", "-shm"})
        fs::remove(settings.file + part);
    writer->turn(at(61'000));
    writer->turn(at(71'000));
    writer->turn(at(72'000));
    EXPECT_THAT(told, ElementsAre(HasSubstr("was removed"), HasSubstr("is written again")));
    EXPECT_THAT(rows("FLOW"), ElementsAre("71000 good 1"));
}

TEST_F(HistoryWriterTest, RemovesWhatIsTooOldButForTheLastValueBefore) {
    settings.keep = 100s;
    const auto writer = makeWriter();
    writer->turn(at(0));
    publish(2, 1, 500);
    for (int second = 1; second <= 400; ++second) {
        publish(1, second, second * 1'000);
        writer->turn(at(second * 1'000));
    }
    // Swept once a minute, of what has been moved to its place, which is done once a minute, too.
    EXPECT_LE(rows("FLOW").size(), 230U);
    EXPECT_EQ(rows("FLOW").back(), "400000 good 400");
    EXPECT_THAT(rows("LEVEL"), ElementsAre("500 good 1"));
}

TEST_F(HistoryWriterTest, StaysBelowItsSizeByRemovingTheOldest) {
    settings.maxSize = 1'000'000;
    const auto writer = makeWriter();
    writer->turn(at(0));
    constexpr int seconds = 900;
    for (int second = 1; second <= seconds; ++second) {
        for (int i = 0; i < 200; ++i)
            publish(1, second + 0.001 * i, second * 1'000 + i);
        writer->turn(at(second * 1'000));
    }
    const Rows flow = rows("FLOW");
    EXPECT_LT(flow.size(), 120'000U);
    EXPECT_GT(flow.size(), 10'000U);
    EXPECT_THAT(flow.back(), HasSubstr("900199 good"));
    EXPECT_LE(fs::file_size(settings.file), 3'000'000U) << "what is moved once a minute comes on top";
}
