#include "Client.h"
#include "Simulator.h"
#include "TemporaryFolder.h"

#include <thread>

#include <gtest/gtest.h>

using namespace sim;
using namespace std::chrono_literals;
namespace files = std::filesystem;

namespace {

const std::string readR10 = "B5 00 05 06 00 00 0A 2E 57";
const std::string answer42 = "B5 01 00 00 00 2A 97 D4";
constexpr std::size_t answerSize = 8;

// Line 1 with station 5, which has 42 in register 10.
class SerialLine : public testing::Test {
protected:
    void start(const Options& options = {}, const SerialSettings& settings = {},
               Framing framing = Framing::DataMode) {
        Site site;
        site.lines.push_back(serialLine(1, {5}, framing, folder.path("line"), settings));
        simulator = std::make_unique<Simulator>(site, options);
        simulator->memory(1, 5).set(Media::Registers, 10, 42);
        ASSERT_EQ(simulator->start(), "");
    }

    bool linkIsThere() const { return files::is_symlink(files::symlink_status(folder.path("line"))); }

    TemporaryFolder folder;
    std::unique_ptr<Simulator> simulator;
};

} // namespace

TEST_F(SerialLine, AnswersAtTheDevice) {
    start();
    EXPECT_EQ(simulator->device(1), folder.path("line"));
    SerialClient client(simulator->device(1));
    EXPECT_EQ(client.ask(readR10, answerSize), answer42);
    EXPECT_EQ(simulator->counts(1).bytesReceived, 9U);
    EXPECT_EQ(simulator->counts(1).bytesSent, answerSize);
}

TEST_F(SerialLine, AnswersInBreakMode) {
    start({}, {}, Framing::BreakMode);
    SerialClient client(simulator->device(1));
    EXPECT_EQ(client.ask("05 06 00 00 0A A5 84", 6), "00 00 00 2A 85 28");
    EXPECT_EQ(client.ask("05 0E 05 00 0A 00 00 00 07 A6 33", 1), "06");
}

TEST_F(SerialLine, PassesEveryByteAsItIs) {
    start();
    std::vector<std::uint32_t> words;
    for (unsigned byte = 0; byte < 256; byte += 4)
        words.push_back(byte << 24 | (byte + 1) << 16 | (byte + 2) << 8 | (byte + 3));
    simulator->memory(1, 5).set(Media::Registers, 100, words);
    SerialClient client(simulator->device(1));
    const std::string answer = client.ask("B5 00 05 06 3F 00 64 4A AB", 260);
    EXPECT_EQ(answer.size(), 260 * 3 - 1U);
    EXPECT_EQ(answer.substr(6, 3 * 20 - 1), "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13");
}

TEST_F(SerialLine, TheDeviceMayBeClosedAndOpenedAgain) {
    start();
    for (int round = 0; round < 3; ++round) {
        SerialClient client(simulator->device(1));
        EXPECT_EQ(client.ask(readR10, answerSize), answer42);
    }
}

TEST_F(SerialLine, ATelegramThatBreaksOffIsGivenUpAfterSilence) {
    start();
    SerialClient client(simulator->device(1));
    client.send("B5 00 05 06");
    const auto end = Clock::now() + patience;
    while (simulator->counts(1).malformed == 0 && Clock::now() < end)
        std::this_thread::sleep_for(5ms);
    EXPECT_EQ(simulator->counts(1).bytesDiscarded, 4U);
    EXPECT_EQ(client.ask(readR10, answerSize), answer42);
}

TEST_F(SerialLine, ACutLineVanishesAndIsBackAtTheSamePath) {
    start();
    SerialClient client(simulator->device(1));
    EXPECT_EQ(client.ask(readR10, answerSize), answer42);
    simulator->cut(1);
    EXPECT_TRUE(client.sawHangUp());
    EXPECT_FALSE(linkIsThere());
    EXPECT_EQ(simulator->device(1), "");
    EXPECT_FALSE(SerialClient(folder.path("line")).isOpen());

    ASSERT_EQ(simulator->restore(1), "");
    SerialClient later(folder.path("line"));
    EXPECT_EQ(later.ask(readR10, answerSize), answer42);
}

TEST_F(SerialLine, StoppingRemovesTheLink) {
    start();
    EXPECT_TRUE(linkIsThere());
    simulator->stop();
    EXPECT_FALSE(linkIsThere());
}

TEST_F(SerialLine, AStaleLinkIsReplaced) {
    files::create_symlink(folder.path("gone"), folder.path("line"));
    start();
    EXPECT_EQ(SerialClient(folder.path("line")).ask(readR10, answerSize), answer42);
}

TEST_F(SerialLine, AFileAtThePathIsLeftAloneAndAnError) {
    folder.write("line", "precious");
    Site site;
    site.lines.push_back(serialLine(1, {5}, Framing::DataMode, folder.path("line")));
    Simulator blocked(site);
    EXPECT_EQ(blocked.start(), "cannot link the device at " + folder.path("line") +
                                   ": something is there already; remove it or choose another path");
    blocked.stop();
    EXPECT_EQ(files::file_size(folder.path("line")), 8U);
}

TEST_F(SerialLine, ALinkToSomethingAliveIsLeftAloneAndAnError) {
    files::create_symlink(folder.write("file", "precious"), folder.path("line"));
    Site site;
    site.lines.push_back(serialLine(1, {5}, Framing::DataMode, folder.path("line")));
    EXPECT_NE(Simulator(site).start(), "");
    EXPECT_TRUE(linkIsThere());
}

TEST_F(SerialLine, ALinkThatSomebodyReplacedIsNotRemoved) {
    start();
    files::remove(folder.path("line"));
    folder.write("line", "another's");
    simulator->stop();
    EXPECT_TRUE(files::is_regular_file(folder.path("line")));
}

TEST_F(SerialLine, WithoutAPathTheTerminalsOwnNameIsTheDevice) {
    Site site;
    site.lines.push_back(serialLine(1, {5}, Framing::DataMode, ""));
    Simulator unlinked(site);
    ASSERT_EQ(unlinked.start(), "");
    EXPECT_EQ(SerialClient(unlinked.device(1)).ask(readR10, answerSize), "B5 01 00 00 00 00 12 FC");
}

TEST_F(SerialLine, PacedBytesTakeTheirTimeOnTheLine) {
    Options options;
    options.pace = true;
    SerialSettings settings;
    settings.baud = 1200; // 10 bits: 8.33 ms a byte
    start(options, settings);
    SerialClient client(simulator->device(1));
    const auto asked = Clock::now();
    EXPECT_EQ(client.ask(readR10, answerSize), answer42);
    EXPECT_GE(Clock::now() - asked, (9 + answerSize) * settings.characterTime());
}

TEST_F(SerialLine, ALateAnswerComesLater) {
    Options options;
    options.faults.late = 1.0;
    options.faults.lateBy = 150ms;
    start(options);
    SerialClient client(simulator->device(1));
    const auto asked = Clock::now();
    EXPECT_EQ(client.ask(readR10, answerSize), answer42);
    EXPECT_GE(Clock::now() - asked, 150ms);
}

TEST_F(SerialLine, StopsWhileAnAnswerIsOnItsWay) {
    Options options;
    options.pace = true;
    SerialSettings settings;
    settings.baud = 50;
    start(options, settings);
    SerialClient client(simulator->device(1));
    client.send(readR10);
    while (simulator->counts(1).telegrams == 0)
        std::this_thread::sleep_for(1ms);
    simulator->stop();
    EXPECT_FALSE(simulator->isRunning());
}
