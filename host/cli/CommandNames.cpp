#include "CommandNames.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace host {

namespace {

class UsageWithArgument : public CLI::Formatter {
public:
    explicit UsageWithArgument(const std::string& namedArgument) : argument(namedArgument) {}

    std::string make_usage(const CLI::App* app, std::string name) const override {
        const std::size_t last = name.rfind(' ');
        if (last != std::string::npos)
            name.insert(last, ' ' + argument);
        return CLI::Formatter::make_usage(app, name);
    }

private:
    const std::string argument;
};

std::string namesOf(const CLI::App& command) {
    std::string names;
    const auto isShown = [](const CLI::App* one) { return !one->get_group().empty(); };
    for (const CLI::App* const one : command.get_subcommands(isShown))
        names += (names.empty() ? "" : ", ") + one->get_name();
    return names;
}

} // namespace

std::string commandFault(const CLI::App& program) {
    const CLI::App* command = &program;
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().front();
    if (command->get_require_subcommand_min() == 0)
        return {};
    const std::vector<std::string> left = command->remaining();
    if (left.empty())
        return "a command is missing; it is one of " + namesOf(*command);
    if (left.front().front() == '-') // an option that is not known
        return {};
    return "there is no command \"" + left.front() + "\"; it is one of " + namesOf(*command);
}

void nameArgumentInUsage(CLI::App& command, const std::string& argument) {
    const auto formatter = std::make_shared<UsageWithArgument>(argument);
    for (CLI::App* const one : command.get_subcommands([](const CLI::App*) { return true; }))
        one->formatter(formatter);
}

} // namespace host
