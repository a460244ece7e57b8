#include "cli/CaptureArguments.h"

#include <CLI/CLI.hpp>

#include <gtest/gtest.h>

namespace {

// What a command line asks for, and why it is wrong.
struct Parsed {
    std::optional<host::CaptureOptions> options;
    std::string fault;
};

Parsed parse(std::vector<std::string> words) {
    CLI::App command;
    const auto given = host::addCaptureOptions(command);
    std::reverse(words.begin(), words.end()); // the parser takes the last word first
    Parsed parsed;
    try {
        command.parse(words);
        parsed.options = captureOf(*given);
    } catch (const CLI::ParseError& failure) {
        parsed.fault = failure.what();
    }
    return parsed;
}

} // namespace

TEST(CaptureArguments, LeftOutCaptureNothing) {
    const Parsed parsed = parse({});
    EXPECT_EQ(parsed.fault, "");
    EXPECT_FALSE(parsed.options);
}

TEST(CaptureArguments, OfAFileAloneKeepFiveOfTenMegabytes) {
    const Parsed parsed = parse({"--capture", "line.pcap"});
    ASSERT_TRUE(parsed.options) << parsed.fault;
    EXPECT_EQ(parsed.options->path, "line.pcap");
    EXPECT_EQ(parsed.options->fileSize, 10'000'000U);
    EXPECT_EQ(parsed.options->files, 5U);
}

TEST(CaptureArguments, TellSizeAndNumberOfFiles) {
    const Parsed parsed =
        parse({"--capture", "line.pcap", "--capture-size", "512kB", "--capture-files", "1"});
    ASSERT_TRUE(parsed.options) << parsed.fault;
    EXPECT_EQ(parsed.options->fileSize, 512'000U);
    EXPECT_EQ(parsed.options->files, 1U);
}

TEST(CaptureArguments, WithoutAFileAreWrong) {
    EXPECT_EQ(parse({"--capture-size", "1MB"}).fault, "--capture-size requires --capture");
    EXPECT_EQ(parse({"--capture-files", "2"}).fault, "--capture-files requires --capture");
    EXPECT_EQ(parse({"--capture", ""}).fault, "--capture: no file is named");
}

TEST(CaptureArguments, RefuseWhatIsNoSizeAndNoNumberOfFiles) {
    EXPECT_EQ(parse({"--capture", "line.pcap", "--capture-size", "10"}).fault,
              "--capture-size: \"10\" is no size above 0; write a number and its unit: 512kB, 10MB, 1GB");
    for (const char* const text : {"0", "1001", "-1", "many"})
        EXPECT_EQ(parse({"--capture", "line.pcap", "--capture-files", text}).fault,
                  "--capture-files: \"" + std::string(text) + "\" is no number of files from 1 to 1000");
}
