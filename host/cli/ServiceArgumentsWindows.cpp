#include "ServiceArguments.h"

#include "CheckCommand.h"
#include "CommandNames.h"
#include "RunArguments.h"
#include "ServiceCommandWindows.h"
#include "windows/ServicePlan.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace host {

namespace {

CLI::App* addAction(CLI::App& service, const char* action, const char* help,
                    const std::shared_ptr<std::string>& name) {
    CLI::App* const command = service.add_subcommand(action, help);
    command->add_option("NAME", *name, "Name of the service")->required()->check(serviceNameFault);
    return command;
}

using SiteAction = ExitStatus (*)(const std::string& name, const RunOptions& options);

void addSiteAction(CLI::App& service, const char* action, const char* help, ExitStatus& status,
                   SiteAction act) {
    const auto name = std::make_shared<std::string>();
    CLI::App* const command = addAction(service, action, help, name);
    const auto sitePath = std::make_shared<std::string>();
    command->add_option("SITE", *sitePath, "Site file")->required();
    const auto run = addUnattendedOptions(*command);
    command->callback([name, sitePath, run, act, &status] {
        run->options.sitePath = *sitePath;
        status = act(*name, runOptionsOf(*run));
    });
}

using NameAction = ExitStatus (*)(const std::string& name);

void addNameAction(CLI::App& service, const char* action, const char* help, ExitStatus& status,
                   NameAction act) {
    const auto name = std::make_shared<std::string>();
    addAction(service, action, help, name)->callback([name, act, &status] { status = act(*name); });
}

} // namespace

void addServiceCommand(CLI::App& program, ExitStatus& status) {
    CLI::App* const service = program.add_subcommand("service", "Run a site as a service of Windows");
    addSiteAction(*service, "install", "Make a service that starts with the system", status, installService);
    addNameAction(*service, "remove", "Stop a service and remove it", status, removeService);
    addNameAction(*service, "start", "Start a service, and wait until it runs", status, startService);
    addNameAction(*service, "stop", "Stop a service, and wait until it has ended", status, stopService);
    addSiteAction(*service, "run", "What the service manager starts", status, runService);
    service->get_subcommand("run")->group(""); // in no list
    service->require_subcommand(1);
}

} // namespace host
