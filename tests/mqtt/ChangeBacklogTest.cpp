#include "services/ChangeBacklog.h"
#include "SmallSite.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Backlog : public testing::Test {
protected:
    static std::vector<NumberedChange> changes(std::uint64_t first, std::uint64_t last) {
        std::vector<NumberedChange> list;
        for (std::uint64_t i = first; i <= last; ++i)
            list.push_back({i, {2, {double(i), 1'000, 2'000, PointQuality::Good, 0}}});
        return list;
    }
    static std::vector<double> valuesOf(ChangeBacklog& backlog, std::size_t most = 100'000) {
        std::uint64_t next = 0;
        std::vector<double> values;
        for (const NumberedChange& one : backlog.read(next, most))
            values.push_back(one.change.state.value);
        return values;
    }

    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("changes.db")).toStdString();
    Site site = smallSite();
    const PointTable points{site};
};

} // namespace

TEST_F(Backlog, KeepsChangesInTheirOrderAsTheyWere) {
    ChangeBacklog backlog(points, path, 1'000'000);
    backlog.open();
    backlog.append(changes(1, 3));
    backlog.append({{4, {0, {1, 5, 6, PointQuality::Bad, 0}}}});
    std::uint64_t next = 0;
    const std::vector<NumberedChange> read = backlog.read(next, 100);
    ASSERT_EQ(read.size(), 4U);
    EXPECT_EQ(read[0].number, 1U);
    EXPECT_EQ(read[2].change.state.value, 3);
    EXPECT_EQ(read[3].change.index, 0U);
    EXPECT_EQ(read[3].change.state.valueTimeMs, 5);
    EXPECT_EQ(read[3].change.state.changeTimeMs, 6);
    EXPECT_EQ(read[3].change.state.quality, PointQuality::Bad);
    EXPECT_EQ(next, 5U);
    EXPECT_THAT(backlog.read(next, 100), IsEmpty());
}

TEST_F(Backlog, IsReadInPortions) {
    ChangeBacklog backlog(points, path, 1'000'000);
    backlog.open();
    backlog.append(changes(1, 3));
    std::uint64_t next = 0;
    EXPECT_EQ(backlog.read(next, 2).size(), 2U);
    EXPECT_EQ(backlog.read(next, 2).at(0).number, 3U);
}

TEST_F(Backlog, PutsAnEarlierNumberBeforeALaterOne) {
    ChangeBacklog backlog(points, path, 1'000'000);
    backlog.open();
    backlog.append(changes(5, 6));
    backlog.append(changes(3, 4));
    EXPECT_THAT(valuesOf(backlog), ElementsAre(3, 4, 5, 6));
    EXPECT_EQ(backlog.lastNumber(), 6U);
}

TEST_F(Backlog, IsThereAgainForTheNextProcess) {
    {
        ChangeBacklog backlog(points, path, 1'000'000);
        backlog.open();
        backlog.append(changes(1, 5));
        backlog.removeUpTo(2);
    }
    ChangeBacklog backlog(points, path, 1'000'000);
    backlog.open();
    EXPECT_EQ(backlog.size(), 3U);
    EXPECT_EQ(backlog.lastNumber(), 5U);
    EXPECT_THAT(valuesOf(backlog), ElementsAre(3, 4, 5));
}

TEST_F(Backlog, LeavesOutPointsThatAreGoneOrMeanSomethingElse) {
    {
        ChangeBacklog backlog(points, path, 1'000'000);
        backlog.open();
        backlog.append({{1, {0, {}}}, {2, {1, {}}}, {3, {2, {}}}});
    }
    site.channels[0].rtus[0].points.erase(site.channels[0].rtus[0].points.begin()); // RUN
    site.channels[0].rtus[0].points[1].address = {'R', 102};                        // LEVEL
    const PointTable edited(site);
    ChangeBacklog backlog(edited, path, 1'000'000);
    backlog.open();
    std::uint64_t next = 0;
    const std::vector<NumberedChange> read = backlog.read(next, 100);
    ASSERT_EQ(read.size(), 1U);
    EXPECT_EQ(read[0].change.index, 0U); // FLOW, which has moved up
    EXPECT_EQ(backlog.dropped(), 2U);
}

TEST_F(Backlog, DropsAndCountsTheOldestAtItsBound) {
    const std::uint64_t most = 1'000;
    ChangeBacklog backlog(points, path, most * ChangeBacklog::bytesPerChange);
    backlog.open();
    for (std::uint64_t first = 1; first < 2'000; first += 100)
        backlog.append(changes(first, first + 99));
    EXPECT_LE(backlog.size(), most);
    EXPECT_EQ(backlog.size() + backlog.dropped(), 2'000U);
    const std::vector<double> values = valuesOf(backlog);
    EXPECT_EQ(values.size(), backlog.size());
    EXPECT_EQ(values.back(), 2'000);
    EXPECT_EQ(values.front(), 2'001 - double(values.size()));
    EXPECT_THAT(backlog.takeNews(), HasSubstr("have reached their bound"));
    EXPECT_EQ(backlog.takeNews(), "");
}

TEST_F(Backlog, TakesNoMoreOfTheDiskThanItsBoundSays) {
    const std::uint64_t bytes = 10'000'000;
    ChangeBacklog backlog(points, path, bytes);
    backlog.open();
    std::vector<NumberedChange> list = changes(1, 400'000);
    for (NumberedChange& one : list)
        one.change.state = {1.0 / 3, 1'795'340'000'125, 1'795'340'000'125, PointQuality::Good, 0};
    backlog.append({list.begin(), list.begin() + 200'000});
    backlog.append({list.begin() + 200'000, list.end()});
    EXPECT_LE(QFile(QString::fromStdString(path)).size(), qint64(bytes * 12 / 10));
}

TEST_F(Backlog, SetsADamagedFileAsideAndGoesOn) {
    QFile file(QString::fromStdString(path));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(10'000, 'x'));
    file.close();
    ChangeBacklog backlog(points, path, 1'000'000);
    backlog.open();
    EXPECT_THAT(backlog.takeNews(), HasSubstr("is damaged"));
    EXPECT_TRUE(QFile::exists(QString::fromStdString(path + ".damaged")));
    backlog.append(changes(1, 2));
    EXPECT_THAT(valuesOf(backlog), ElementsAre(1, 2));
}

TEST_F(Backlog, SetsAFileAsideThatIsDamagedInTheMiddle) {
    {
        ChangeBacklog backlog(points, path, 10'000'000);
        backlog.open();
        backlog.append(changes(1, 20'000));
    }
    QFile file(QString::fromStdString(path));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.seek(8'192);
    file.write(QByteArray(400'000, '\xA5'));
    file.close();
    ChangeBacklog backlog(points, path, 10'000'000);
    backlog.open();
    valuesOf(backlog);
    backlog.removeUpTo(1);
    EXPECT_THAT(backlog.takeNews(), HasSubstr("is damaged"));
    backlog.append(changes(30'001, 30'002));
    EXPECT_THAT(valuesOf(backlog), ElementsAre(30'001, 30'002));
}

TEST_F(Backlog, CountsWhatTheDiskRefusesAndSaysSoOnce) {
    const std::string nowhere = folder.filePath(QStringLiteral("none/changes.db")).toStdString();
    ChangeBacklog backlog(points, nowhere, 1'000'000);
    backlog.open();
    backlog.append(changes(1, 3));
    backlog.append(changes(4, 6));
    EXPECT_EQ(backlog.dropped(), 6U);
    EXPECT_THAT(backlog.takeNews(), HasSubstr("cannot be written"));
    backlog.append(changes(7, 7));
    EXPECT_EQ(backlog.takeNews(), "");
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("none")));
    backlog.append(changes(8, 9));
    EXPECT_THAT(valuesOf(backlog), ElementsAre(8, 9));
    EXPECT_THAT(backlog.takeNews(), HasSubstr("can be written again"));
}
