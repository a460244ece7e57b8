#include "CommandLine.h"

#include "ArgumentFaults.h"
#include "CaptureArguments.h"
#include "site/Duration.h"
#include "site/Number.h"
#include "site/StationRanges.h"

#include <CLI/CLI.hpp>

namespace host {

namespace {

const std::vector<std::string> modeNames = {"data", "break"};
const std::vector<std::string> formatNames = {"text", "json", "csv"};

// The texts behind the options that all three take.
struct GivenController {
    std::string link;
    unsigned station = 0;
    std::string timeout;
    std::string mode = modeNames.front();
    unsigned breakDelayMs = 10;
    std::string pluginPath;
    std::shared_ptr<GivenCapture> capture;
};

std::string readsFault(const std::string& text) {
    const ParsedReads parsed = parseElementReads(text);
    return faultText(parsed.what, parsed.remedy);
}

std::string writeFault(const std::string& text) {
    const ParsedWrite parsed = parseElementWrite(text);
    return faultText(parsed.what, parsed.remedy);
}

std::string stationFault(const std::string& text) {
    return parseNumber(text, 0, highestAnsweringStation)
               ? ""
               : "\"" + text + "\" is no station from 0 to 254 (255 is the broadcast, which nobody answers)";
}

std::string countFault(const std::string& text) {
    return parseNumber(text, 1, std::numeric_limits<unsigned>::max())
               ? ""
               : "\"" + text + "\" is no number above 0";
}

std::shared_ptr<GivenController> addController(CLI::App& command) {
    auto given = std::make_shared<GivenController>();
    command
        .add_option("LINK", given->link,
                    "udp://HOST:PORT or \"serial:DEVICE?baud=N&parity=none|even|odd&stop=1|2\"")
        ->required()
        ->check(linkFault);
    command.add_option("--station", given->station, "S-Bus station number, 0 to 254; without it 0")
        ->check(stationFault);
    command
        .add_option("--timeout", given->timeout, "How long an answer may take, such as 500ms; without it 1s")
        ->check(durationFault);
    command.add_option("--mode", given->mode, "Transmit type of a serial line; without it data")
        ->check(CLI::IsMember(modeNames))
        ->type_name("MODE");
    command
        .add_option("--break-delay", given->breakDelayMs,
                    "Milliseconds of break before each telegram of mode break; without it 10")
        ->check(breakDelayFault);
    command.add_option(
        "--plugin", given->pluginPath,
        "Driver plug-in; without it SBusDriver beside this program or in the library directory");
    given->capture = addCaptureOptions(command);
    return given;
}

Controller controllerOf(const GivenController& given) {
    Controller controller;
    controller.pluginPath = given.pluginPath;
    controller.capture = captureOf(*given.capture);
    ControllerLine& line = controller.line;
    line.end = parseLinkUrl(given.link).end.value();
    line.station = given.station;
    if (!given.timeout.empty())
        line.timeout = parseDuration(given.timeout).value();
    line.transmitType = given.mode == "break" ? TransmitType::Break : TransmitType::Data;
    line.breakDelayMs = given.breakDelayMs;
    return controller;
}

void addRead(CLI::App& program, ExitStatus& status) {
    struct Given {
        std::vector<std::string> addresses;
        std::string every;
        unsigned count = 0; // 0: left out
        std::string format = formatNames.front();
    };
    CLI::App* const command = program.add_subcommand("read", "Read elements of one controller");
    const auto controller = addController(*command);
    const auto given = std::make_shared<Given>();
    command->add_option("ADDRESS", given->addresses, "R10, R10..20, R30:float, R30:ieee, F5, I0..15")
        ->required()
        ->check(readsFault);
    CLI::Option* const every =
        command
            ->add_option("--every", given->every, "Read again each time this time has passed, until Ctrl-C")
            ->check(durationFault);
    command->add_option("--count", given->count, "End after so many readings")
        ->check(countFault)
        ->needs(every);
    command->add_option("--format", given->format, "How values are written; without it text")
        ->check(CLI::IsMember(formatNames))
        ->type_name("FORMAT");
    command->callback([controller, given, &status] {
        ReadOptions options;
        options.controller = controllerOf(*controller);
        for (const std::string& text : given->addresses)
            for (const ElementRead& element : parseElementReads(text).elements)
                options.elements.push_back(element);
        options.format = given->format == "json"  ? ReadFormat::Json
                         : given->format == "csv" ? ReadFormat::Csv
                                                  : ReadFormat::Text;
        if (!given->every.empty())
            options.every = parseDuration(given->every);
        if (given->count > 0)
            options.count = given->count;
        status = readElements(options);
    });
}

void addWrite(CLI::App& program, ExitStatus& status) {
    struct Given {
        std::vector<std::string> values;
        bool verify = false;
        bool dryRun = false;
    };
    CLI::App* const command = program.add_subcommand("write", "Write elements of one controller");
    const auto controller = addController(*command);
    const auto given = std::make_shared<Given>();
    command->add_option("ADDRESS=VALUE", given->values, "O200=1, R10=12, R30:float=1.5, R30:ieee=1.5, T5=100")
        ->required()
        ->check(writeFault);
    command->add_flag("--verify", given->verify, "Read back what was written, and compare");
    command->add_flag("--dry-run", given->dryRun, "Tell the telegrams as hex and in words, and send nothing")
        ->excludes("--capture");
    command->callback([controller, given, &status] {
        WriteOptions options;
        options.controller = controllerOf(*controller);
        for (const std::string& text : given->values)
            options.writes.push_back(parseElementWrite(text).write);
        options.verify = given->verify;
        status = given->dryRun ? tellWrites(options) : writeElements(options);
    });
}

void addTimeSync(CLI::App& program, ExitStatus& status) {
    CLI::App* const command =
        program.add_subcommand("time-sync", "Set one controller's clock to the local time of this computer");
    const auto controller = addController(*command);
    command->callback([controller, &status] { status = synchroniseClock(controllerOf(*controller)); });
}

} // namespace

void addOneShotCommands(CLI::App& program, ExitStatus& status) {
    addRead(program, status);
    addWrite(program, status);
    addTimeSync(program, status);
}

} // namespace host
