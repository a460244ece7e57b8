#include "RunArguments.h"

#include "CaptureArguments.h"
#include "services/control/SocketPath.h"

#include <CLI/CLI.hpp>

#include <filesystem>

namespace host {

namespace {

std::string fullPath(const std::string& path) {
    return std::filesystem::absolute(std::filesystem::u8path(path)).make_preferred().u8string();
}

std::string bytesText(std::uint64_t bytes) {
    return std::to_string(bytes) + "B";
}

} // namespace

std::shared_ptr<GivenRun> addUnattendedOptions(CLI::App& command) {
    auto given = std::make_shared<GivenRun>();
    RunOptions& options = given->options;
    command.add_flag("--loopback", options.isOnLoopback,
                     "Talk to sbus-sim --loopback in place of the controllers");
    given->log = addLogOptions(command);
    command.add_option(
        "--plugin", options.pluginPath,
        "Driver plug-in; without it SBusDriver beside this program or in the library directory");
    command.add_option(
        "--control", options.controlPath,
        "Where sbus-host ctl reaches this host; without it at a socket of the site file's own");
    command.add_flag("!--no-control", options.takesControl, "Take no commands from sbus-host ctl")
        ->excludes("--control");
    command.add_option(
        "--state-dir", options.stateDirectory,
        "Where running pulses are remembered; without it in $XDG_STATE_HOME or ~/.local/state");
    given->capture = addCaptureOptions(command);
    return given;
}

RunOptions runOptionsOf(const GivenRun& given) {
    RunOptions options = given.options;
    options.log = logOf(*given.log, options.frames);
    options.capture = captureOf(*given.capture);
    return options;
}

std::vector<std::string> unattendedArguments(const RunOptions& options) {
    std::vector<std::string> arguments;
    const auto add = [&arguments](const char* name, const std::string& value) {
        arguments.insert(arguments.end(), {name, value});
    };
    if (options.isOnLoopback)
        arguments.emplace_back("--loopback");
    if (options.log) {
        add("--log-dir", fullPath(options.log->directory));
        add("--log-size", bytesText(options.log->fileBytes));
        add("--log-files", std::to_string(options.log->files));
    }
    if (!options.pluginPath.empty())
        add("--plugin", fullPath(options.pluginPath));
    if (!options.controlPath.empty())
        add("--control", fullSocketPath(options.controlPath));
    if (!options.takesControl)
        arguments.emplace_back("--no-control");
    if (!options.stateDirectory.empty())
        add("--state-dir", fullPath(options.stateDirectory));
    if (options.capture) {
        add("--capture", fullPath(options.capture->path));
        add("--capture-size", bytesText(options.capture->fileSize));
        add("--capture-files", std::to_string(options.capture->files));
    }
    return arguments;
}

} // namespace host
