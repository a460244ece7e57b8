#include "Program.h"
#include "Client.h"
#include "TemporaryFolder.h"

#include <ProgramVersion.h>

#include <array>
#include <csignal>
#include <sstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sim;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

#ifdef SIGHUP
constexpr std::array stopSignals{SIGINT, SIGTERM, SIGHUP};
#else
constexpr std::array stopSignals{SIGINT, SIGTERM};
#endif

class Program : public testing::Test {
protected:
    int run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "sbus-sim");
        std::vector<const char*> pointers;
        pointers.reserve(arguments.size());
        for (const std::string& argument : arguments)
            pointers.push_back(argument.c_str());
        return runProgram(static_cast<int>(pointers.size()), pointers.data(), out, err);
    }

    // One serial line with station 5.
    std::string serialSite() {
        return folder.write("site.toml", "[[channel]]\nid = 1\nname = \"mill\"\ntype = \"SBus-Serial\"\n"
                                         "primary = 'serial:" +
                                             device() +
                                             "?baud=19200'\n"
                                             "[[channel.rtu]]\nid = 1\nstation = 5\n");
    }
    std::string device() const { return folder.path("line"); }

    void waitForDevice() const {
        while (!std::filesystem::exists(device()))
            std::this_thread::sleep_for(1ms);
    }

    TemporaryFolder folder;
    std::ostringstream out;
    std::ostringstream err;
};

} // namespace

TEST_F(Program, SaysWhereItsLinesAreAndWhatItCounted) {
    EXPECT_EQ(run({serialSite(), "--for", "20ms"}), exitGood);
    EXPECT_EQ(out.str(), "line 1 (mill): serial " + device() +
                             ", data mode, stations 5\n"
                             "ready\n"
                             "line 1 (mill): telegrams 0, bytes in 0, bytes out 0\n"
                             "  station 5: answers 0, refusals 0\n");
    EXPECT_EQ(err.str(), "");
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(device())));
}

TEST_F(Program, TellsVersionAndCommit) {
    EXPECT_EQ(run({"--version"}), exitGood);
    EXPECT_EQ(out.str(), "sbus-sim " PROJECT_VERSION "\n" + std::string(release::commit()) + "\n");
}

TEST_F(Program, EndsCleanlyAtASignal) {
    const std::string site = serialSite();
    for (const int signal : stopSignals) {
        std::thread user([&] {
            waitForDevice();
            SerialClient(device()).ask("B5 00 05 06 00 00 0A 2E 57", 8);
            std::raise(signal);
        });
        EXPECT_EQ(run({site}), exitGood);
        user.join();
    }
    EXPECT_THAT(out.str(), HasSubstr("    read registers 1\n"));
}

#ifdef SIGHUP
TEST_F(Program, GoesOnAtAHangUpThatItWasToldToIgnore) {
    const auto before = std::signal(SIGHUP, SIG_IGN); // as nohup does
    const std::string site = serialSite();
    std::thread user([&] {
        waitForDevice();
        std::raise(SIGHUP);
        SerialClient(device()).ask("B5 00 05 06 00 00 0A 2E 57", 8);
        std::raise(SIGTERM);
    });
    EXPECT_EQ(run({site}), exitGood);
    user.join();
    std::signal(SIGHUP, before);
    EXPECT_THAT(out.str(), HasSubstr("    read registers 1\n"));
}
#endif

TEST_F(Program, PlaysWhatItsOptionsSay) {
    const std::string site = serialSite();
    std::string fixed;
    std::string smaller;
    std::thread user([&] {
        waitForDevice();
        SerialClient client(device());
        fixed = client.ask("B5 00 05 06 01 00 C8 E0 69", 12);
        smaller = client.ask("B5 00 05 06 00 01 F4 13 B7", 6);
        std::raise(SIGINT);
    });
    EXPECT_EQ(run({site, "--set", "5/R200=7", "--set", "1:5/R201=1.0", "--size", "R=500", "--move", "--pace",
                   "--seed", "9", "--fault", "late=100%", "--late-delay", "1ms"}),
              exitGood);
    user.join();
    EXPECT_EQ(fixed, "B5 01 00 00 00 07 80 00 00 41 82 F5");
    EXPECT_EQ(smaller, "B5 02 00 01 33 D5");
    EXPECT_THAT(out.str(),
                HasSubstr("  faults played: drop 0, late 2, duplicate 0, crc 0, nak 0, short 0\n"));
    EXPECT_THAT(out.str(), HasSubstr(", range errors 1\n"));
}

TEST_F(Program, ExplainsItself) {
    EXPECT_EQ(run({"--help"}), exitGood);
    EXPECT_THAT(out.str(), HasSubstr("--late-delay"));
}

TEST_F(Program, NeedsASite) {
    EXPECT_EQ(run({}), exitUsage);
    EXPECT_THAT(err.str(), HasSubstr("site"));
}

TEST_F(Program, RefusesAnUnknownOption) {
    EXPECT_EQ(run({serialSite(), "--mvoe"}), exitUsage);
    EXPECT_THAT(err.str(), HasSubstr("--mvoe"));
}

TEST_F(Program, ListsEveryMistakeOfItsArgumentsAndItsSiteFile) {
    const std::string site = folder.write("site.toml", "channel = 1\n");
    EXPECT_EQ(run({site, "--for", "10", "--fault", "fire=1%", "--set", "R1=1", "--size", "X=1",
                   "--late-delay", "1"}),
              exitUsage);
    EXPECT_EQ(err.str(),
              "--fault: no fault is called 'fire': choose from drop, late, duplicate, crc, nak, short\n"
              "--late-delay: '1' is no time above 0; write it with its unit, as in 10s\n"
              "--for: '10' is no time above 0; write it with its unit, as in 10s\n"
              "--size: 'X=1' must be a letter and a number up to 65536, as in R=16384\n"
              "--set: 'R1=1': the station comes first, as in 5/R200=7 or, on line 2, 2:5/R200=7\n" +
                  site + ":1: channel: there must be at least one [[channel]] table\n");
    EXPECT_EQ(out.str(), "");
}

TEST_F(Program, TakesNoTimeOfZeroForATimeWithoutEnd) {
    for (const char* const nothing : {"0s", "0ms", "0.4ms", ""})
        EXPECT_EQ(run({serialSite(), "--for", nothing}), exitUsage) << nothing;
    EXPECT_EQ(run({serialSite(), "--late-delay", "0s"}), exitUsage);
    EXPECT_THAT(err.str(), HasSubstr("--for: '0s' is no time above 0; write it with its unit, as in 10s\n"));
    EXPECT_EQ(out.str(), "");
}

TEST_F(Program, RefusesToFixWhatIsNotThere) {
    EXPECT_EQ(run({serialSite(), "--set", "6/R1=1", "--set", "2:5/R1=1", "--set", "5/T1600=1"}), exitUsage);
    EXPECT_EQ(err.str(), "--set: '6/R1=1': the site has no station 6\n"
                         "--set: '2:5/R1=1': line 2 has no station 5\n"
                         "--set: '5/T1600=1': a controller has no element T1600\n");
}

TEST_F(Program, NamesFileLineAndKeyOfALineThatCannotBeOpened) {
    folder.write("line", "precious");
    const std::string site = serialSite();
    EXPECT_EQ(run({site, "--for", "1s"}), exitUsage);
    EXPECT_THAT(err.str(), StartsWith(site + ":5: primary: cannot link the device at " + device() + ": "));
}
