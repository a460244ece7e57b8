#include "ServiceArguments.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace host {

void addServiceCommand(CLI::App& program, ExitStatus& status) {
    CLI::App* const command = program.add_subcommand("service", "Run a site as a service of Windows");
    command->group(""); // in no list
    command->prefix_command();
    command->callback([&status] {
        std::cerr << "sbus-host: services of this system are systemd's; the Debian package sbus-host brings "
                     "sbus-host@SITE.service\n";
        status = ExitStatus::Configuration;
    });
}

} // namespace host
