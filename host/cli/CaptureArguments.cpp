#include "CaptureArguments.h"

#include "site/ByteSize.h"
#include "site/Number.h"

#include <CLI/CLI.hpp>

namespace host {

namespace {

// Beginning a new file renames all of them.
constexpr unsigned mostFiles = 1'000;

std::string pathFault(const std::string& text) {
    return text.empty() ? "no file is named" : "";
}

std::string filesFault(const std::string& text) {
    return parseNumber(text, 1, mostFiles) ? "" : "\"" + text + "\" is no number of files from 1 to 1000";
}

} // namespace

std::shared_ptr<GivenCapture> addCaptureOptions(CLI::App& command) {
    auto given = std::make_shared<GivenCapture>();
    CLI::Option* const capture =
        command.add_option("--capture", given->path, "Write every telegram into this file, for Wireshark")
            ->check(pathFault)
            ->type_name("FILE.pcap");
    command
        .add_option("--capture-size", given->fileSize,
                    "A new file begins at this size, such as 512kB; without it 10MB")
        ->check(byteSizeFault)
        ->type_name("SIZE")
        ->needs(capture);
    command.add_option("--capture-files", given->files, "Keep at most so many of them; without it 5")
        ->check(filesFault)
        ->needs(capture);
    return given;
}

std::optional<CaptureOptions> captureOf(const GivenCapture& given) {
    if (given.path.empty())
        return std::nullopt;
    CaptureOptions options;
    options.path = given.path;
    if (!given.fileSize.empty())
        options.fileSize = parseByteSize(given.fileSize).value();
    options.files = given.files;
    return options;
}

} // namespace host
