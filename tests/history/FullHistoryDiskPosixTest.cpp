// The disk is full: the system refuses to make files of this process any larger.

#include "services/history/HistoryService.h"

#include "Eventually.h"
#include "HistoryRows.h"
#include "NotingTaker.h"
#include "SmallSite.h"

#include <QDateTime>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include <sys/resource.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// Ends the limit when it is destroyed.
class FullDisk {
public:
    explicit FullDisk(rlim_t largestFile) {
        std::signal(SIGXFSZ, SIG_IGN);
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
        const rlimit full{largestFile, before.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit before{};
};

class FullHistoryDisk : public testing::Test {
protected:
    FullHistoryDisk() { settings.file = folder.filePath(QStringLiteral("history.db")).toStdString(); }

    void publish(double value) {
        values.publishPoints(
            4, 7,
            {PointUpdate{false, 1, value, CMidTime(QDateTime::currentDateTime(), 0), PointQuality::Good}});
    }
    std::uint64_t figure(const host::Service& service, const std::string& name) const {
        for (const host::ServiceFigure& one : service.figures())
            if (one.name == name)
                return one.value;
        ADD_FAILURE() << name;
        return 0;
    }

    const QTemporaryDir folder;
    const host::Site site = smallSite();
    host::ValueStore values{site};
    host::ExchangeFeed exchanges;
    NotingTaker taker;
    host::Messages messages;
    host::RunningSite running{site, values, exchanges, taker, messages, {}, {}};
    host::HistorySettings settings;
};

} // namespace

TEST_F(FullHistoryDisk, IsToldOnceAndLosesNothingThatTheRingHolds) {
    host::HistoryService service(settings);
    ASSERT_EQ(service.start(running), "");
    publish(1);
    ASSERT_TRUE(eventually([&] { return figure(service, "rows") == 1; }));
    {
        const FullDisk full(std::filesystem::file_size(settings.file + "-wal"));
        for (int i = 2; i <= 1'000; ++i)
            publish(i);
        ASSERT_TRUE(eventually([&] { return figure(service, "failures") > 0; }));
    }
    EXPECT_THAT(messages.take(), ElementsAre(HasSubstr("history.db cannot be written")));
    ASSERT_TRUE(eventually([&] { return figure(service, "rows") == 1'000; }));
    EXPECT_THAT(messages.take(), ElementsAre(HasSubstr("is written again; nothing is missing")));
    EXPECT_EQ(figure(service, "lost"), 0U);
    service.stop();
    EXPECT_EQ(SQLite::Database(settings.file).execAndGet("PRAGMA integrity_check").getString(), "ok");
    EXPECT_THAT(recordedRows(settings.file, "FLOW", 0).back(), HasSubstr("good 1000"));
}

// A host that ends has a second.
TEST_F(FullHistoryDisk, HoldsUpNoEnd) {
    host::HistoryService service(settings);
    ASSERT_EQ(service.start(running), "");
    publish(1);
    ASSERT_TRUE(eventually([&] { return figure(service, "rows") == 1; }));
    const FullDisk full(std::filesystem::file_size(settings.file + "-wal"));
    for (int i = 2; i <= 1'000; ++i)
        publish(i);
    service.stop();
    EXPECT_EQ(figure(service, "lost"), 999U);
}
