#include "cli/RunArguments.h"

#include <CLI/CLI.hpp>
#include <QDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using host::RunOptions;
using host::unattendedArguments;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

RunOptions parsed(std::vector<std::string> arguments) {
    CLI::App command;
    const auto given = host::addUnattendedOptions(command);
    std::reverse(arguments.begin(), arguments.end()); // as CLI11 takes them
    command.parse(arguments);
    return host::runOptionsOf(*given);
}

std::string inCurrentFolder(const char* name) {
    return QDir::toNativeSeparators(QDir::current().absoluteFilePath(QString::fromLatin1(name)))
        .toStdString();
}

} // namespace

TEST(UnattendedArguments, AreNoneWithoutOptions) {
    EXPECT_THAT(unattendedArguments(parsed({})), IsEmpty());
}

// A service starts in a folder of the system's.
TEST(UnattendedArguments, NameFullPaths) {
    EXPECT_THAT(
        unattendedArguments(parsed({"--log-dir", "logs"})),
        ElementsAre("--log-dir", inCurrentFolder("logs"), "--log-size", "5000000B", "--log-files", "3"));
    EXPECT_THAT(unattendedArguments(parsed({"--state-dir", "state"})),
                ElementsAre("--state-dir", inCurrentFolder("state")));
    EXPECT_THAT(unattendedArguments(parsed({"--plugin", "p"})),
                ElementsAre("--plugin", inCurrentFolder("p")));
    EXPECT_THAT(unattendedArguments(parsed({"--capture", "c.pcap"})),
                ElementsAre("--capture", inCurrentFolder("c.pcap"), "--capture-size", "10000000B",
                            "--capture-files", "5"));
}

TEST(UnattendedArguments, AreReadBackAsTheyWereMeant) {
    const std::vector<std::string> given =
        unattendedArguments(parsed({"--loopback", "--log-dir", "l", "--log-size", "512kB", "--log-files", "7",
                                    "--plugin", "p", "--control", "c", "--state-dir", "s", "--capture", "f",
                                    "--capture-size", "1MB", "--capture-files", "2"}));
    EXPECT_EQ(unattendedArguments(parsed(given)), given);
    const RunOptions options = parsed(given);
    EXPECT_TRUE(options.isOnLoopback);
    EXPECT_EQ(options.log->fileBytes, 512'000U);
    EXPECT_EQ(options.log->files, 7U);
    EXPECT_EQ(options.capture->fileSize, 1'000'000U);
    EXPECT_EQ(options.capture->files, 2U);
    EXPECT_TRUE(options.takesControl);
}

TEST(UnattendedArguments, KeepTheControlSocketClosed) {
    EXPECT_THAT(unattendedArguments(parsed({"--no-control"})), ElementsAre("--no-control"));
    EXPECT_FALSE(parsed({"--no-control"}).takesControl);
}
