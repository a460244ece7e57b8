#include "CheckCommand.h"
#include "CommandLine.h"
#include "CommandNames.h"
#include "CtlArguments.h"
#include "HistoryArguments.h"
#include "ImportCommand.h"
#include "LastWords.h"
#include "RunArguments.h"
#include "ScanArguments.h"
#include "ServiceArguments.h"
#include "services/console/Journal.h"
#include "services/console/Terminal.h"
#include "site/Duration.h"

#include <StandardDescriptors.h>
#include <StandardOutput.h>
#include <StandardTexts.h>

#include <CLI/CLI.hpp>
#include <ControlCharacters.h>
#include <DescriptorLimit.h>
#include <OutOfMemory.h>
#include <ProgramVersion.h>
#include <QCoreApplication>

#include <sstream>
#include <string>
#include <vector>

namespace {

using host::ExitStatus;
using host::OutputFormat;

const std::vector<std::string> formatNames = {"table", "lines", "json", "csv"};

OutputFormat formatNamed(const std::string& name) {
    return name == "table"  ? OutputFormat::Table
           : name == "json" ? OutputFormat::Json
           : name == "csv"  ? OutputFormat::Csv
                            : OutputFormat::Lines;
}

const char* const exitStatusHelp =
    "Exit status: 0 good, 1 communication failed, 2 usage or configuration, 3 some but not all, 4 refused";

void addCheckCommand(CLI::App& program, ExitStatus& status) {
    CLI::App* const command =
        program.add_subcommand("check", "Tell what is wrong with a site file, or what its polls will cost");
    struct Given {
        std::string path;
        bool tellsMap = false;
        std::string format = "table";
    };
    const auto given = std::make_shared<Given>();
    command->add_option("SITE", given->path, "Site file")->required();
    CLI::Option* const map = command->add_flag("--modbus-map", given->tellsMap,
                                               "Tell where clients of its Modbus server find which point");
    command->add_option("--format", given->format, "How that is told; without it table")
        ->check(CLI::IsMember(std::vector<std::string>{"table", "csv"}))
        ->type_name("FORMAT")
        ->needs(map);
    command->callback([given, &status] {
        status = given->tellsMap ? host::tellModbusMap(given->path, given->format == "csv")
                                 : host::checkSiteFile(given->path);
    });
}

std::string columnsFault(const std::string& text) {
    return host::parseColumns(text).fault;
}

void addImportCommand(CLI::App& program, ExitStatus& status) {
    struct Given {
        host::ImportOptions options;
        std::string columns;
    };
    CLI::App* const command = program.add_subcommand(
        "import", "Make a point table of the symbol lists that programming tools export");
    const auto given = std::make_shared<Given>();
    command->add_option("FILE", given->options.lists, "Symbol lists: text with separators")->required();
    command->add_option("-o,--output", given->options.output, "Point table to write, such as points.csv")
        ->required();
    command
        ->add_option(
            "--columns", given->columns,
            "Where to find what, such as symbol=1,type=2,address=3,comment=4; without it by the heads")
        ->check(columnsFault);
    command->add_flag("--force", given->options.overwrites, "Write over a file that is there already");
    command->callback([given, &status] {
        given->options.columns = host::parseColumns(given->columns).columns;
        status = host::importSymbols(given->options);
    });
}

void addRunCommand(CLI::App& program, ExitStatus& status) {
    struct Given {
        std::string sitePath;
        std::string duration;
        std::string format;
        bool frames = false;
    };
    CLI::App* const command =
        program.add_subcommand("run", "Poll the controllers of a site and show their values");
    const auto given = std::make_shared<Given>();
    command->add_option("SITE", given->sitePath, "Site file")->required();
    command->add_option("--for", given->duration, "End after this time, such as 10s; without it at Ctrl-C")
        ->check(host::durationFault);
    command
        ->add_option(
            "--format", given->format,
            "How values are shown; without it table on a terminal, lines elsewhere and with --frames")
        ->check(CLI::IsMember(formatNames))
        ->type_name("FORMAT");
    command->add_flag("--frames", given->frames, "Show every telegram as hex on standard error");
    const auto run = host::addUnattendedOptions(*command);
    command->callback([given, run, &status] {
        run->options.sitePath = given->sitePath;
        run->options.frames = given->frames;
        host::RunOptions options = host::runOptionsOf(*run);
        if (!given->duration.empty())
            options.duration = host::parseDuration(given->duration);
        if (!given->format.empty())
            options.format = formatNamed(given->format);
        status = host::runSite(options);
    });
}

int endEarly(const CLI::App& program, const CLI::ParseError& ending) {
    constexpr int usage = static_cast<int>(ExitStatus::Configuration);
    const bool lacksCommand = std::string(ending.what()) == CLI::RequiredError::Subcommand(1).what();
    const std::string fault = lacksCommand ? host::commandFault(program) : "";
    std::ostringstream told; // with words of the command line in it
    if (fault.empty()) {
        const int number = program.exit(ending, std::cout, told);
        std::cerr << text::printableLines(told.str());
        return number == 0 ? 0 : usage;
    }
    told << "sbus-host: " << fault << "\nRun with --help for more information.\n";
    std::cerr << text::printableLines(told.str());
    return usage;
}

int runProgram(int& argc, char** argv) {
    QCoreApplication application(argc, argv);
    CLI::App program("Talks to S-Bus controllers through the SBusDriver plug-in", "sbus-host");
    program.allow_windows_style_options(false); // "/data/site.toml" is a path everywhere
    program.set_version_flag("--version", release::versionText("sbus-host") + "\nQt " + qVersion(),
                             "Tell version, commit and Qt and end");
    program.require_subcommand(1);
    program.footer(exitStatusHelp);
    ExitStatus status = ExitStatus::Good;
    addRunCommand(program, status);
    addCheckCommand(program, status);
    addImportCommand(program, status);
    host::addOneShotCommands(program, status);
    host::addScanCommand(program, status);
    addCtlCommand(program, status);
    host::addHistoryCommand(program, status);
    host::addServiceCommand(program, status);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& ending) { // also the end of --help, whose number is 0
        return endEarly(program, ending);
    }
    return static_cast<int>(status);
}

} // namespace

int main(int argc, char** argv) {
    openClosedStandardDescriptors();
    const StandardTexts texts;
    ProgramArguments arguments(argc, argv);
    host::takeQtMessages();
    descriptors::raiseLimit();
    host::terminal::survivePipeEnd();
    try {
        return statusWithOutput("sbus-host", runProgram(arguments.count(), arguments.values()));
    } catch (const std::bad_alloc&) {
        outofmemory::endProgram();
    } catch (const std::exception& failure) {
        std::cerr << host::journal::mark(host::Severity::Error)
                  << "sbus-host: " << text::printable(failure.what()) << '\n';
        return static_cast<int>(ExitStatus::Configuration);
    }
}
