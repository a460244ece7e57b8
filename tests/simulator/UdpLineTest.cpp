#include "Client.h"
#include "Simulator.h"

#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

using namespace sim;
using namespace std::chrono_literals;

namespace {

const std::string readR10 = "00 00 00 10 01 00 12 34 00 05 06 00 00 0A B5 A5";
const std::string answer42 = "00 00 00 0F 01 00 12 34 01 00 00 00 2A EC 5E";
const std::string answer0 = "00 00 00 0F 01 00 12 34 01 00 00 00 00 69 76";

// Line 1 with station 5, which has 42 in register 10.
class UdpLine : public testing::Test {
protected:
    explicit UdpLine(const Options& options = {}) : simulator(oneLine(), options) {}

    void SetUp() override {
        simulator.memory(1, 5).set(Media::Registers, 10, 42);
        ASSERT_EQ(simulator.start(), "");
        client = std::make_unique<UdpClient>(simulator.port(1));
    }

    static Site oneLine() {
        Site site;
        site.lines.push_back(udpLine(1, {5}));
        return site;
    }

    Simulator simulator;
    std::unique_ptr<UdpClient> client;
};

} // namespace

TEST_F(UdpLine, AnswersAtTheRealPort) {
    EXPECT_NE(simulator.port(1), 0);
    EXPECT_EQ(client->ask(readR10), answer42);
    EXPECT_EQ(simulator.counts(1).stations[5].answers, 1U);
    EXPECT_EQ(simulator.counts(1).bytesReceived, 16U);
    EXPECT_EQ(simulator.counts(1).bytesSent, 15U);
}

TEST_F(UdpLine, AnswersWhoeverAsks) {
    UdpClient other(simulator.port(1));
    client->send(readR10);
    other.send(readR10);
    EXPECT_EQ(other.receive(), answer42);
    EXPECT_EQ(client->receive(), answer42);
}

TEST_F(UdpLine, ShowsWhatIsSetFromOutsideAtOnce) {
    simulator.memory(1, 5).set(Media::Registers, 10, 0);
    EXPECT_EQ(client->ask(readR10), answer0);
}

TEST_F(UdpLine, ASilencedControllerReturns) {
    simulator.silence(1, 5, true);
    client->send(readR10);
    EXPECT_EQ(client->receive(shortly), "");
    simulator.silence(1, 5, false);
    EXPECT_EQ(client->ask(readR10), answer42);
}

TEST_F(UdpLine, ACutLineIsBackAtTheSamePort) {
    const std::uint16_t port = simulator.port(1);
    simulator.cut(1);
    EXPECT_EQ(simulator.port(1), port);
    client->send(readR10);
    EXPECT_EQ(client->receive(shortly), "");
    ASSERT_EQ(simulator.restore(1), "");
    EXPECT_EQ(simulator.port(1), port);
    UdpClient later(port);
    EXPECT_EQ(later.ask(readR10), answer42);
}

TEST_F(UdpLine, CuttingAndRestoringTwiceIsNoHarm) {
    simulator.cut(1);
    simulator.cut(1);
    EXPECT_EQ(simulator.restore(1), "");
    EXPECT_EQ(simulator.restore(1), "");
    EXPECT_EQ(UdpClient(simulator.port(1)).ask(readR10), answer42);
}

TEST_F(UdpLine, ALateAnswerComesLater) {
    Faults faults;
    faults.late = 1.0;
    faults.lateBy = 150ms;
    simulator.setFaults(1, faults);
    const auto asked = Clock::now();
    EXPECT_EQ(client->ask(readR10), answer42);
    EXPECT_GE(Clock::now() - asked, 150ms);
}

TEST_F(UdpLine, AnswersThatWaitWhenTheLineIsCutAreLost) {
    Faults faults;
    faults.late = 1.0;
    faults.lateBy = 100ms;
    simulator.setFaults(1, faults);
    client->send(readR10);
    while (simulator.counts(1).faults.late == 0)
        std::this_thread::sleep_for(1ms);
    simulator.cut(1);
    ASSERT_EQ(simulator.restore(1), "");
    EXPECT_EQ(client->receive(300ms), "");
}

TEST_F(UdpLine, KeepsItsMemoryAndCountsAcrossARestart) {
    client->ask(readR10);
    simulator.stop();
    EXPECT_FALSE(simulator.isRunning());
    EXPECT_EQ(simulator.port(1), 0);
    simulator.cut(1);
    ASSERT_EQ(simulator.start(), "");
    EXPECT_EQ(UdpClient(simulator.port(1)).ask(readR10), answer42);
    EXPECT_EQ(simulator.counts(1).telegrams, 2U);
}

TEST_F(UdpLine, NamesWhatIsNotThere) {
    EXPECT_THROW(simulator.memory(1, 6), std::out_of_range);
    EXPECT_THROW(simulator.memory(2, 5), std::out_of_range);
    EXPECT_THROW(simulator.silence(1, 6, true), std::out_of_range);
    EXPECT_THROW(simulator.port(1, End::Secondary), std::out_of_range);
    EXPECT_THROW(simulator.cut(2), std::out_of_range);
}

TEST_F(UdpLine, APortInUseIsAnErrorAndNothingStarts) {
    Site site;
    site.lines.push_back(udpLine(1, {5}));
    site.lines.push_back(udpLine(2, {5}, simulator.port(1)));
    site.lines[1].primary.place = "site.toml:9: primary: ";
    Simulator second(site);
    const std::string error = second.start();
    EXPECT_EQ(error.find("site.toml:9: primary: cannot bind 127.0.0.1:" + std::to_string(simulator.port(1))),
              0U)
        << error;
    EXPECT_FALSE(second.isRunning());
}

TEST(UdpLines, AHostElsewhereIsAnError) {
    Site site;
    site.lines.push_back(udpLine(1, {5}));
    site.lines[0].primary.host = "192.0.2.1"; // reserved for documentation: nobody has it
    Simulator simulator(site);
    EXPECT_EQ(simulator.start(), "cannot bind 192.0.2.1:0: 192.0.2.1 is no address of this machine");
}

TEST(UdpLines, TheSameControllersAnswerOnBothEnds) {
    Site site;
    site.lines.push_back(udpLine(1, {5}));
    site.lines[0].secondary.emplace();
    Simulator simulator(site);
    simulator.memory(1, 5).set(Media::Registers, 10, 42);
    ASSERT_EQ(simulator.start(), "");
    UdpClient primary(simulator.port(1));
    UdpClient secondary(simulator.port(1, End::Secondary));
    EXPECT_EQ(primary.ask(readR10), answer42);
    simulator.cut(1, End::Primary);
    primary.send(readR10);
    EXPECT_EQ(primary.receive(shortly), "");
    EXPECT_EQ(secondary.ask(readR10), answer42);
}

TEST(UdpLines, TwoWithOneIdAreRefused) {
    Site site;
    site.lines.push_back(udpLine(1, {5}));
    site.lines.push_back(udpLine(1, {6}));
    EXPECT_THROW(Simulator{site}, std::invalid_argument);
}

TEST(UdpLines, MoveWhileTheyRun) {
    Site site;
    site.lines.push_back(udpLine(1, {5}));
    Options options;
    options.move = true;
    Simulator simulator(site, options);
    ASSERT_EQ(simulator.start(), "");
    const std::uint32_t first = simulator.memory(1, 5).get(Media::Registers, 0);
    const auto end = Clock::now() + patience;
    while (simulator.memory(1, 5).get(Media::Registers, 0) == first && Clock::now() < end)
        std::this_thread::sleep_for(10ms);
    EXPECT_NE(simulator.memory(1, 5).get(Media::Registers, 0), first);
}
