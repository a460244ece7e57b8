#include "HistoryArguments.h"

#include "HistoryCommand.h"
#include "site/Duration.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace host {

namespace {

struct Given {
    HistoryOptions options;
    std::string every;
    std::string aggregate = "mean";
    std::string format = "csv";
};

Aggregate aggregateNamed(const std::string& name) {
    return name == "min"    ? Aggregate::Min
           : name == "max"  ? Aggregate::Max
           : name == "last" ? Aggregate::Last
                            : Aggregate::Mean;
}

void addPlotOptions(CLI::App& command, Given& given) {
    CLI::Option* const plot = command.add_option(
        "--plot", given.options.plot, "Draw the values into this file, as a picture in the form SVG");
    command.add_flag("--force", given.options.overwrites, "Write over a file that is there already")
        ->needs(plot);
}

} // namespace

void addHistoryCommand(CLI::App& program, ExitStatus& status) {
    CLI::App* const command = program.add_subcommand("history", "Show or draw values that were recorded");
    const auto given = std::make_shared<Given>();
    command->add_option("SITE", given->options.sitePath, "Site file")->required();
    command
        ->add_option("POINT", given->options.points,
                     "RTU/POINT, or CHANNEL/RTU/POINT where several channels have such an RTU")
        ->required();
    command->add_option("--from", given->options.from,
                        "2026-11-22, \"2026-11-22 14:00\", with an offset, or -1h; without it -24h");
    command->add_option("--to", given->options.to, "Likewise; without it now");
    CLI::Option* const every =
        command->add_option("--every", given->every, "One value for each stretch of time, such as 1m or 1d")
            ->check(timeSpanFault);
    command->add_option("--aggregate", given->aggregate, "Which; without it mean, which is weighted by time")
        ->check(CLI::IsMember({"mean", "min", "max", "last"}))
        ->type_name("VALUE")
        ->needs(every);
    command->add_option("--format", given->format, "How values are written; without it csv")
        ->check(CLI::IsMember({"csv", "json"}))
        ->type_name("FORMAT");
    addPlotOptions(*command, *given);
    command->callback([given, &status] {
        if (!given->every.empty())
            given->options.every = parseTimeSpan(given->every);
        given->options.aggregate = aggregateNamed(given->aggregate);
        given->options.format = given->format == "json" ? HistoryFormat::Json : HistoryFormat::Csv;
        status = showHistory(given->options);
    });
}

} // namespace host
