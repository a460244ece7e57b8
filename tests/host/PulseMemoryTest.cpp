#include "NotingTaker.h"
#include "SmallSite.h"
#include "services/RunningSite.h"
#include "services/pulses/PulseSupervisor.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What a host leaves for the next one when it is killed.

using namespace std::chrono_literals;
using Halvex::DriverErrorResult;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr auto success = DriverErrorResult::Success;
const std::string on = "4/7 switch 1 on";
const std::string end = "4/7 end 1";
const std::string who = "RTU 7 \"pump-house\" (station 5";

// One run of a host after the other, each of which is gone without an end when it is destroyed. Point 1 of
// RTU 7 of channel 4 is a pulse of 4 s.
class RememberedPulses : public testing::Test {
protected:
    struct Run {
        explicit Run(RememberedPulses& test)
            : site(test.site), store(site),
              pulses(
                  store, taker, [this](const std::string& text) { messages.push_back(text); },
                  [&test] { return test.now; }) {
            pulses.useMemory(std::make_unique<host::PulseMemory>(test.directory(), test.sitePath));
            host::RunningSite running{site, store, exchanges, pulses, told, {}, {}};
            EXPECT_EQ(pulses.start(running), "");
            pulses.stop(); // what its thread does is done by the test
        }
        void switchOn() {
            EXPECT_EQ(pulses.submit({4, 7, host::SwitchPoint{1, true}}, [](const host::CommandEnd&) {}), "");
        }

        host::Site site;
        host::ValueStore store;
        NotingTaker taker;
        std::vector<std::string> messages;
        host::ExchangeFeed exchanges;
        host::Messages told;
        host::PulseSupervisor pulses;
    };

    RememberedPulses() { site.channels[0].rtus[0].points[0].pulseMs = 4'000; }

    host::Point& point() { return site.channels[0].rtus[0].points[0]; }
    std::string directory() const { return folder.path().toStdString(); }
    QStringList files() const {
        return QDir(folder.filePath(QStringLiteral("sbus-host"))).entryList({QStringLiteral("*.json")});
    }
    QString file() const { return folder.filePath(QStringLiteral("sbus-host/")) + files().value(0); }
    void write(const QByteArray& text) const {
        QFile damaged(file());
        ASSERT_TRUE(damaged.open(QIODevice::WriteOnly | QIODevice::Truncate));
        damaged.write(text);
    }

    const QTemporaryDir folder;
    std::string sitePath = "/plant/site.toml";
    host::Site site = smallSite();
    host::PulseSupervisor::Clock::time_point now = host::PulseSupervisor::Clock::time_point() + 1h;
};

} // namespace

TEST_F(RememberedPulses, AreOnTheDiskBeforeTheirOnCommandGoesOut) {
    struct Looking : NotingTaker {
        std::string submit(const host::Command& command, host::CommandDone done) override {
            filesThen.push_back(files());
            return NotingTaker::submit(command, std::move(done));
        }
        std::function<int()> files;
        std::vector<int> filesThen;
    } taker;
    taker.files = [this] { return files().size(); };
    host::ValueStore store(site);
    host::PulseSupervisor pulses(store, taker, [](const std::string&) {});
    pulses.useMemory(std::make_unique<host::PulseMemory>(directory(), sitePath));
    host::ExchangeFeed exchanges;
    host::Messages told;
    host::RunningSite running{site, store, exchanges, pulses, told, {}, {}};
    EXPECT_EQ(pulses.start(running), "");
    pulses.submit({4, 7, host::SwitchPoint{1, true}}, [](const host::CommandEnd&) {});
    pulses.stop();
    EXPECT_THAT(taker.filesThen, ElementsAre(1));
}

TEST_F(RememberedPulses, AreSwitchedOffByTheNextHost) {
    {
        Run killed(*this);
        EXPECT_THAT(killed.messages, IsEmpty());
        killed.switchOn();
        killed.taker.end(success);
        killed.pulses.look();
    }
    Run next(*this);
    EXPECT_THAT(next.messages, ElementsAre(AllOf(HasSubstr("point 1 \"RUN\" (O32)"),
                                                 HasSubstr("its pulse ran when this site's host last ended; "
                                                           "it is switched off"))));
    next.pulses.look();
    EXPECT_THAT(next.taker.texts, ElementsAre(end));
    next.pulses.look();
    EXPECT_THAT(next.taker.texts, ElementsAre(end)); // it has no result yet
    EXPECT_EQ(files().size(), 1);
    next.taker.end(success);
    next.pulses.look();
    EXPECT_THAT(next.messages.back(), HasSubstr("it is switched off now"));
    EXPECT_EQ(files().size(), 0);
}

TEST_F(RememberedPulses, AreSwitchedOffAgainUntilThatSucceeds) {
    { Run(*this).switchOn(); }
    Run next(*this);
    next.pulses.look();
    next.taker.end({DriverErrorResult::ChannelError, false}); // its line is not open yet
    next.pulses.look();
    EXPECT_THAT(next.taker.texts, ElementsAre(end));
    now += 1s;
    next.pulses.look();
    EXPECT_THAT(next.taker.texts, ElementsAre(end, end));
    EXPECT_EQ(files().size(), 1);
}

TEST_F(RememberedPulses, AreForgottenOnceTheirPointReadsOff) {
    Run run(*this);
    run.switchOn();
    run.taker.end(success);
    now += 4s;
    PointUpdate update; // of the RTU's first point
    update.quality = PointQuality::Good;
    for (int i = 0; i < 2; ++i) {
        run.pulses.look();
        EXPECT_EQ(files().size(), 1);
        run.store.publishPoints(4, 7, {update});
    }
    run.pulses.look();
    EXPECT_EQ(files().size(), 0);
}

TEST_F(RememberedPulses, AreForgottenWhenTheirOnCommandIsRefused) {
    Run run(*this);
    run.taker.refusal = "no";
    run.pulses.submit({4, 7, host::SwitchPoint{1, true}}, [](const host::CommandEnd&) {});
    run.pulses.look();
    EXPECT_EQ(files().size(), 0);
}

TEST_F(RememberedPulses, StayRememberedWhenAStopHadToLeaveThemOn) {
    {
        Run stopped(*this);
        stopped.switchOn();
        stopped.taker.end(success);
        stopped.pulses.beginEnding();
        EXPECT_FALSE(stopped.pulses.haveEnded());
        now += 4s;
        EXPECT_TRUE(stopped.pulses.haveEnded());
    }
    Run next(*this);
    next.pulses.look();
    EXPECT_THAT(next.taker.texts, ElementsAre(end));
}

TEST_F(RememberedPulses, AreForgottenWhenAStopHasEndedThem) {
    Run stopped(*this);
    stopped.switchOn();
    stopped.taker.end(success);
    stopped.pulses.beginEnding();
    EXPECT_FALSE(stopped.pulses.haveEnded());
    stopped.taker.end(success);
    EXPECT_TRUE(stopped.pulses.haveEnded());
    EXPECT_EQ(files().size(), 0);
}

// An off command that goes to another element switches off what nobody asked for.
TEST_F(RememberedPulses, AreToldButNotTouchedWhereTheSiteHasSomethingElseNow) {
    const std::vector<std::function<void(host::Site&)>> changes = {
        [](host::Site& one) { one.channels[0].rtus[0].points[0].address.number = 33; },
        [](host::Site& one) {
            one.channels[0].rtus[0].points[0].secondAddress = {'O', 40};
        },
        [](host::Site& one) { one.channels[0].rtus[0].points[0].id = 9; },
        [](host::Site& one) { one.channels[0].rtus[0].station = 6; },
        [](host::Site& one) { one.channels[0].rtus[0].id = 8; },
        [](host::Site& one) {
            one.channels[0].primary = host::UdpEnd{"127.0.0.1", 10};
        },
        [](host::Site& one) { one.channels[0].id = 5; },
    };
    const host::Site before = site;
    for (const auto& change : changes) {
        site = before;
        { Run(*this).switchOn(); }
        change(site);
        Run next(*this);
        next.pulses.look();
        EXPECT_THAT(next.taker.texts, IsEmpty());
        EXPECT_THAT(next.messages,
                    ElementsAre(AllOf(HasSubstr(who), HasSubstr("point 1 \"RUN\" (O32)"),
                                      HasSubstr("not switched off: see to it at the controller"))));
    }
}

TEST_F(RememberedPulses, OfAnotherSiteFileStayThere) {
    { Run(*this).switchOn(); }
    sitePath = "/plant/other.toml";
    Run other(*this);
    other.pulses.look();
    EXPECT_THAT(other.taker.texts, IsEmpty());
    EXPECT_EQ(files().size(), 1);
}

TEST_F(RememberedPulses, AnOnCommandOfTodayTakesTheirPlace) {
    { Run(*this).switchOn(); }
    Run next(*this);
    next.switchOn();
    next.pulses.look();
    EXPECT_THAT(next.taker.texts, ElementsAre(on)); // an off command would cut it short
    next.taker.end(success);
    next.pulses.look();
    EXPECT_THAT(next.taker.texts, ElementsAre(on));
}

TEST_F(RememberedPulses, ADamagedFileIsToldAndReplaced) {
    for (const char* const damage :
         {"", "{", "[]", "\x01\x02", "{\"sbus_host_pulses\":1,\"pulses\":[]}",
          "{\"sbus_host_pulses\":2,\"site\":\"/plant/site.toml\",\"pulses\":[]}",
          "{\"sbus_host_pulses\":1,\"site\":\"/plant/site.toml\",\"pulses\":[{}]}"}) {
        { Run(*this).switchOn(); }
        write(damage);
        Run next(*this);
        next.pulses.look();
        EXPECT_THAT(next.taker.texts, IsEmpty()) << damage;
        if (*damage != '\0') {
            EXPECT_THAT(next.messages, ElementsAre(HasSubstr("is damaged or not this site's"))) << damage;
        }
        EXPECT_EQ(files().size(), *damage != '\0' ? 0 : 1) << damage;
        next.switchOn();
        EXPECT_EQ(files().size(), 1) << damage;
    }
}

TEST_F(RememberedPulses, ASecondHostOfTheSiteLeavesThemAlone) {
    Run first(*this);
    first.switchOn();
    Run second(*this);
    EXPECT_THAT(second.messages, ElementsAre(HasSubstr("another sbus-host uses")));
    second.pulses.look();
    EXPECT_THAT(second.taker.texts, IsEmpty());
    EXPECT_EQ(files().size(), 1);
}

TEST_F(RememberedPulses, ASiteWithoutPulsesNeedsNoFile) {
    point().pulseMs = 0;
    const Run run(*this);
    EXPECT_FALSE(QDir(folder.filePath(QStringLiteral("sbus-host"))).exists());
}

TEST_F(RememberedPulses, GoOutAllTheSameWhereNothingCanBeWritten) {
    Run run(*this);
    ASSERT_TRUE(QDir(folder.filePath(QStringLiteral("sbus-host"))).removeRecursively());
    run.switchOn();
    run.switchOn();
    EXPECT_THAT(run.taker.texts, ElementsAre(on, on));
    EXPECT_THAT(run.messages, ElementsAre(HasSubstr("a pulse that runs when this host is killed stays on")));
}
