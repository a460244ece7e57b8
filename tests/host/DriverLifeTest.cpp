// What a host does with a driver, from its loading to its end, as the driver sees it.
#include "RecordingCore.h"
#include "SmallSite.h"
#include "TracingDriver.h"
#include "runtime/HostRuntime.h"

#include <QCoreApplication>
#include <QVariant>

#include <gtest/gtest.h>

namespace {

class DriverLife : public testing::Test {
protected:
    DriverLife() {
        qApp->setProperty(TracingDriver::notes, QVariant());
        site.channels.push_back(site.channels[0]);
        site.channels[1].id = 5;
    }

    // What the driver has noted since the last call.
    static QStringList calls() {
        const QStringList noted = qApp->property(TracingDriver::notes).toStringList();
        qApp->setProperty(TracingDriver::notes, QVariant());
        return noted;
    }

    static QStringList list(std::initializer_list<const char*> texts) {
        QStringList all;
        for (const char* const text : texts)
            all << QLatin1String(text);
        return all;
    }

    host::Site site = smallSite();
    RecordingCore core;
};

} // namespace

// Code of the driver runs until its last channel is gone, and fin() is the last that it hears.
TEST_F(DriverLife, ClosesEveryChannelThenDeletesThemThenEndsTheDriver) {
    host::HostRuntime runtime(site, core);
    ASSERT_EQ(runtime.start(TRACING_PLUGIN_FILE), "");
    EXPECT_EQ(calls(), list({"initialize", "load translator", "create channel 4", "init channel 4",
                             "create channel 5", "init channel 5"}));
    runtime.stop();
    EXPECT_EQ(calls(), list({"close channel 4", "close channel 5", "delete channel 4", "delete channel 5",
                             "fin", "delete driver"}));
    runtime.stop();
    EXPECT_EQ(calls(), QStringList()) << "a second stop finds nothing to end";
}

TEST_F(DriverLife, EndsWithItsRuntime) {
    {
        host::HostRuntime runtime(site, core);
        ASSERT_EQ(runtime.prepare(TRACING_PLUGIN_FILE), "");
        calls();
    }
    EXPECT_EQ(calls(), list({"close channel 4", "close channel 5", "delete channel 4", "delete channel 5",
                             "fin", "delete driver"}));
}

TEST_F(DriverLife, EndsInOrderWhenItMakesOnlySomeOfTheChannels) {
    site.channels[1].id = 100;
    host::HostRuntime runtime(site, core);
    EXPECT_NE(runtime.start(TRACING_PLUGIN_FILE), "");
    EXPECT_EQ(calls(),
              list({"initialize", "load translator", "create channel 4", "init channel 4",
                    "create channel 100", "close channel 4", "delete channel 4", "fin", "delete driver"}));
}

TEST_F(DriverLife, IsTheSameWhenLinesAreInterrupted) {
    host::HostRuntime runtime(site, core);
    ASSERT_EQ(runtime.start(TRACING_PLUGIN_FILE), "");
    calls();
    runtime.stopAtOnce();
    EXPECT_EQ(calls(), list({"close channel 4", "close channel 5", "delete channel 4", "delete channel 5",
                             "fin", "delete driver"}));
}
