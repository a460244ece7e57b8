#include "LogArguments.h"

#include "site/ByteSize.h"
#include "site/Number.h"

#include <CLI/CLI.hpp>

namespace host {

namespace {

// Beginning a new file renames all of them.
constexpr unsigned mostFiles = 1'000;

std::string filesFault(const std::string& text) {
    return parseNumber(text, 1, mostFiles) ? "" : "\"" + text + "\" is no number of files from 1 to 1000";
}

} // namespace

std::shared_ptr<GivenLog> addLogOptions(CLI::App& command) {
    auto given = std::make_shared<GivenLog>();
    CLI::Option* const directory =
        command.add_option("--log-dir", given->directory,
                           "Write a log file per channel and one of all messages into this directory");
    command
        .add_option("--log-size", given->fileSize,
                    "A new log file begins at this size, such as 512kB; without it 5MB")
        ->check(byteSizeFault)
        ->type_name("SIZE")
        ->needs(directory);
    command
        .add_option("--log-files", given->files, "Keep at most so many log files of each kind; without it 3")
        ->check(filesFault)
        ->needs(directory);
    return given;
}

std::optional<LogOptions> logOf(const GivenLog& given, bool withFrames) {
    if (given.directory.empty())
        return std::nullopt;
    LogOptions options;
    options.directory = given.directory;
    if (!given.fileSize.empty())
        options.fileBytes = parseByteSize(given.fileSize).value();
    options.files = given.files;
    options.withFrames = withFrames;
    return options;
}

} // namespace host
