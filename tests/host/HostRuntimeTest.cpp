#include "runtime/HostRuntime.h"
#include "RecordingCore.h"
#include "SmallSite.h"
#include "runtime/FailureText.h"

#include <HalvexAbstractDriver/DriverPluginInterface.h>
#include <HalvexDriverComponent/CReply.h>
#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverLink/CLink.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>

using host::DriverPlugin;
using host::HostRuntime;
using testing::HasSubstr;

namespace {

// A line whose waits end only when they are interrupted, whatever their time-out.
class EndlessLink : public CLink {
public:
    void reset() override { clearInterrupt(); }
    int open() override { return 0; }
    void close() override {}
    int send(const char*, int, int) override { return 0; }
    int receive(char*, int, int& received, int) override {
        received = 0;
        waits = true;
        while (!isInterrupted())
            QThread::msleep(1);
        return -1;
    }
    int kind() const override { return udpKind; }

    std::atomic<bool> waits{false};

private:
    void wake() override {}
};

// A line that can be opened and takes nothing.
class UntakingLink : public CLink {
public:
    void reset() override {}
    int open() override { return noteOpened(0); }
    void close() override {}
    int send(const char* data, int length, int) override { return noteSendEnded(-1, data, length); }
    int receive(char*, int, int& received, int) override {
        received = 0;
        return 0;
    }
    int kind() const override { return udpKind; }

private:
    void wake() override {}
};

// Who hears of the first request with which a line has failed.
class FailureListener : public host::LineListener {
public:
    void requestEnded(const host::RequestEnd& end) override {
        if (end.kind == host::RequestEnd::Kind::LineFailed && !isTold.exchange(true))
            reason.set_value(failureReason(end));
    }
    void lineOpened(const host::Channel&, bool, int) override {}

    std::promise<std::string> reason;

private:
    std::atomic<bool> isTold{false};
};

} // namespace

TEST(DriverPlugin, IsLoadedByItsMetadataAndUnloaded) {
    DriverPlugin plugin;
    EXPECT_EQ(plugin.load(PLUGIN_FILE), "");
    ASSERT_NE(plugin.driver(), nullptr);
    EXPECT_EQ(plugin.driver()->driverCode(), 11);
    plugin.unload();
    EXPECT_EQ(plugin.driver(), nullptr);
    EXPECT_EQ(plugin.load(PLUGIN_FILE), "");
}

TEST(DriverPlugin, IsRefusedWhenItIsAnythingElse) {
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("SBusDriver.so"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no library");
    file.close();
    DriverPlugin plugin;
    EXPECT_THAT(plugin.load(path.toStdString()), HasSubstr("is no Qt plug-in"));
    EXPECT_THAT(plugin.load("/no/such/SBusDriver.so"), HasSubstr("is not there"));
    EXPECT_THAT(plugin.load(directory.path().toStdString()), HasSubstr("cannot be read: "));
    EXPECT_EQ(plugin.driver(), nullptr);
}

TEST(HostRuntime, StartsNothingWithoutAPlugin) {
    const host::Site site = smallSite();
    RecordingCore core;
    HostRuntime runtime(site, core);
    EXPECT_THAT(runtime.start("/no/such/SBusDriver.so"), HasSubstr("--plugin"));
    EXPECT_TRUE(runtime.rtuFigures().empty());
}

TEST(HostRuntime, StartsNothingWhenThePluginMakesNoChannel) {
    const host::Site site = smallSite();
    RecordingCore core;
    HostRuntime runtime(site, core);
    EXPECT_EQ(runtime.start(EMPTY_HANDED_PLUGIN_FILE),
              "channel 4 \"waterworks\": the plug-in made no channel");
    EXPECT_TRUE(runtime.channelFigures().empty());
}

TEST(HostRuntime, RunsTheSiteThroughThePlugin) {
    const host::Site site = smallSite();
    RecordingCore core;
    HostRuntime runtime(site, core);
    ASSERT_EQ(runtime.start(PLUGIN_FILE), "");
    ASSERT_NE(runtime.findRtu(4, 7), nullptr);
    EXPECT_EQ(runtime.findRtu(4, 8), nullptr);
    // FLOW and LEVEL, and the integer beside FLOW.
    EXPECT_EQ(runtime.findRtu(4, 7)->GetPointList()->GetAnalogPointList().size(), 3);
    // Nobody answers: sooner or later a request has ended.
    while (runtime.rtuFigures().at(0).status.requests == 0)
        QThread::msleep(10);
    EXPECT_EQ(runtime.rtuFigures()[0].status.answers, 0U);
    runtime.stop();
    EXPECT_TRUE(runtime.rtuFigures().empty());
}

// The plug-in polls every RTU when its line connects, whether it is enabled or not.
TEST(HostRuntime, LeavesADisabledRtuUnread) {
    host::Site site = smallSite();
    host::Rtu disabled = site.channels[0].rtus[0];
    disabled.id = 8;
    disabled.enabled = false;
    site.channels[0].rtus.push_back(disabled);
    RecordingCore core;
    HostRuntime runtime(site, core);
    ASSERT_EQ(runtime.start(PLUGIN_FILE), "");
    while (runtime.rtuFigures().at(0).status.requests < 3)
        QThread::msleep(10);
    EXPECT_EQ(runtime.rtuFigures().at(1).status.requests, 0U);
}

TEST(HostRuntime, StopsWhileARequestWaitsForItsAnswer) {
    host::Site site = smallSite();
    site.channels[0].rtus[0].timeout = std::chrono::milliseconds(300);
    RecordingCore core;
    HostRuntime runtime(site, core);
    ASSERT_EQ(runtime.start(PLUGIN_FILE), "");
    QThread::msleep(100);
    QElapsedTimer elapsed;
    elapsed.start();
    runtime.stop();
    EXPECT_LT(elapsed.elapsed(), 30'000); // ends at all; how soon depends on the machine's load
}

TEST(HostRuntime, InterruptsALineAtItsOwnTimeOutHoweverLongThatOfAnother) {
    host::Site site = smallSite();
    site.channels.push_back(site.channels[0]);
    site.channels[0].rtus[0].timeout = std::chrono::minutes(10);
    site.channels[0].rtus[0].points.clear(); // idle
    site.channels[1].id = 5;
    site.channels[1].primary = host::UdpEnd{"endless", 1};
    EndlessLink* endless = nullptr;
    RecordingCore core;
    HostRuntime runtime(site, core, nullptr, [&](const host::LinkEnd& end) -> std::unique_ptr<CLink> {
        if (std::get<host::UdpEnd>(end).host != "endless")
            return host::makeLink(end);
        auto link = std::make_unique<EndlessLink>();
        endless = link.get();
        return link;
    });
    ASSERT_EQ(runtime.start(PLUGIN_FILE), "");
    while (!endless->waits)
        QThread::msleep(10);
    QElapsedTimer elapsed;
    elapsed.start();
    runtime.stop();
    EXPECT_LT(elapsed.elapsed(), 300'000);
}

// No poll finds that out: nothing is read.
TEST(HostRuntime, TellsACommandThatCouldNotBeSentWhilePollsAreSupervised) {
    host::Site site = smallSite();
    host::Rtu& rtu = site.channels[0].rtus[0];
    rtu.points.resize(1);
    rtu.points[0].isPolled = false;
    RecordingCore core;
    FailureListener listener;
    HostRuntime runtime(site, core, &listener,
                        [](const host::LinkEnd&) { return std::make_unique<UntakingLink>(); });
    runtime.supervisePolls();
    ASSERT_EQ(runtime.start(PLUGIN_FILE), "");
    while (!runtime.channelStatus(site.channels[0]).connected)
        QThread::msleep(10);
    CReply reply;
    EXPECT_EQ(runtime.findRtu(4, 7)->statusWrite(numberOf(rtu, rtu.points[0]), 1, &reply), 0);
    std::future<std::string> reason = listener.reason.get_future();
    ASSERT_EQ(reason.wait_for(std::chrono::minutes(1)), std::future_status::ready);
    EXPECT_EQ(reason.get(), "a command was not sent: switch O32 on (RUN); the line failed; check the network "
                            "of this computer");
    runtime.stop();
}

TEST(HostRuntime, StopsWhileALineCannotBeOpened) {
    host::Site site = smallSite();
    site.channels[0].type = host::LineType::Serial;
    site.channels[0].primary = host::SerialEnd{"/no/such/device"};
    RecordingCore core;
    HostRuntime runtime(site, core);
    ASSERT_EQ(runtime.start(PLUGIN_FILE), "");
    while (runtime.channelStatus(site.channels[0]).failedOpens == 0)
        QThread::msleep(10);
    runtime.stop();
    EXPECT_EQ(runtime.findRtu(4, 7), nullptr);
}
