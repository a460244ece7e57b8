#include "CtlArguments.h"

#include "CommandNames.h"
#include "CtlCommand.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace {

struct Given {
    host::CtlOptions options;
    std::string format = "text";
    std::vector<std::string> values;
    host::RtuNames rtus;
    std::vector<std::string> channels;
};
using GivenPtr = std::shared_ptr<Given>;

constexpr char pointHelp[] =
    "RTU/POINT=VALUE, or CHANNEL/RTU/POINT=VALUE where several channels have such an "
    "RTU; VALUE is a number, or on or off";

std::string pointValueFault(const std::string& text) {
    if (host::parsePointValue(text))
        return {};
    return "\"" + text + "\" is no RTU/POINT=VALUE, such as pump-house/P1_START=1";
}

CLI::App* addRequest(CLI::App& command, const char* name, const char* help) {
    CLI::App* const request = command.add_subcommand(name, help);
    request->fallthrough(); // --format and --control may stand behind it
    return request;
}

// A request that takes names of RTUs.
template <typename RequestForRtus>
void addRtuRequest(CLI::App& command, const GivenPtr& given, const char* name, const char* help) {
    CLI::App* const request = addRequest(command, name, help);
    request->add_option("RTU", given->rtus, "RTU or CHANNEL/RTU; without it all");
    request->callback([given] { given->options.request = RequestForRtus{given->rtus}; });
}

void addWriteRequest(CLI::App& command, const GivenPtr& given) {
    CLI::App* const request = addRequest(command, "write", "Switch outputs and write set points");
    request->add_option("VALUES", given->values, pointHelp)->required()->check(pointValueFault);
    request->callback([given] {
        host::WriteRequest write;
        for (const std::string& text : given->values)
            write.values.push_back(*host::parsePointValue(text));
        given->options.request = write;
    });
}

} // namespace

void addCtlCommand(CLI::App& program, host::ExitStatus& status) {
    CLI::App* const command = program.add_subcommand("ctl", "Command and question the host that runs a site");
    const auto given = std::make_shared<Given>();
    command->add_option("SITE", given->options.sitePath, "The site file that the host runs")->required();
    command->add_option("--control", given->options.socketPath,
                        "The host's control socket; without it the one that belongs to the site file");
    command->add_option("--format", given->format, "How replies and values are shown")
        ->check(CLI::IsMember({"text", "json"}))
        ->type_name("FORMAT")
        ->capture_default_str();
    addWriteRequest(*command, given);
    addRtuRequest<host::PollRequest>(*command, given, "poll", "Ask for an integrity poll now");
    addRtuRequest<host::TimeSyncRequest>(*command, given, "time-sync", "Set the controllers' clocks");
    addRtuRequest<host::WatchRequest>(*command, given, "watch", "Show the values, and every change of them");
    CLI::App* const trace = addRequest(*command, "trace", "Show every telegram and its answer as they come");
    trace->add_option("LINE", given->channels, "Channel of the site file; without it all");
    trace->callback([given] { given->options.request = host::TraceRequest{given->channels}; });
    addRequest(*command, "status", "Show how channels and RTUs stand")->callback([given] {
        given->options.request = host::StatusRequest{};
    });
    command->require_subcommand(1);
    host::nameArgumentInUsage(*command, "SITE");
    command->final_callback([given, &status] {
        given->options.json = given->format == "json";
        status = host::askRunningHost(given->options);
    });
}
