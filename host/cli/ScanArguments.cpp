#include "ScanArguments.h"

#include "ArgumentFaults.h"
#include "CaptureArguments.h"
#include "oneshot/Commands.h"
#include "site/BaudRate.h"
#include "site/Duration.h"
#include "site/Number.h"
#include "site/StationRanges.h"

#include <CLI/CLI.hpp>

namespace host {

namespace {

const std::vector<std::string> modeNames = {"data", "break"};
const std::vector<std::string> formatNames = {"text", "json"};
// Short enough for 254 stations in a minute.
constexpr std::chrono::milliseconds usualTimeout{200};

struct GivenScan {
    std::string link;
    std::string stations = "0..253";
    std::vector<std::string> bauds;
    std::vector<std::string> modes;
    std::string timeout;
    unsigned breakDelayMs = 10;
    std::string format = formatNames.front();
    std::string sitePath;
    bool overwrites = false;
    std::string pluginPath;
    std::shared_ptr<GivenCapture> capture;
};

std::string stationsFault(const std::string& text) {
    const ParsedStations parsed = parseStations(text);
    return faultText(parsed.what, parsed.remedy);
}

std::string baudFault(const std::string& text) {
    const std::optional<unsigned> baud = parseNumber(text, 1, std::numeric_limits<unsigned>::max());
    if (!baud)
        return "\"" + text + "\" is no baud rate";
    return isKnownBaudRate(*baud)
               ? ""
               : text + " is no baud rate that this system knows; the nearest that it knows: " +
                     nearestBaudRates(*baud);
}

std::vector<LinkEnd> endsOf(const GivenScan& given) {
    const LinkEnd end = parseLinkUrl(given.link).end.value();
    const SerialEnd* const serial = std::get_if<SerialEnd>(&end);
    if (serial == nullptr || given.bauds.empty())
        return {end};
    std::vector<LinkEnd> ends;
    for (const std::string& baud : given.bauds) {
        SerialEnd one = *serial;
        one.baud = parseNumber(baud, 1, std::numeric_limits<unsigned>::max()).value();
        ends.emplace_back(one);
    }
    return ends;
}

// Every baud rate with every transmit type.
std::vector<ControllerLine> waysOf(const GivenScan& given) {
    std::vector<ControllerLine> ways;
    const std::vector<std::string> modes =
        given.modes.empty() ? std::vector<std::string>{modeNames.front()} : given.modes;
    for (const LinkEnd& end : endsOf(given))
        for (const std::string& mode : modes) {
            ControllerLine line;
            line.end = end;
            line.timeout = given.timeout.empty() ? usualTimeout : parseDuration(given.timeout).value();
            line.transmitType = mode == "break" ? TransmitType::Break : TransmitType::Data;
            line.breakDelayMs = given.breakDelayMs;
            ways.push_back(line);
        }
    return ways;
}

ScanOptions optionsOf(const GivenScan& given) {
    if (std::holds_alternative<UdpEnd>(parseLinkUrl(given.link).end.value()) &&
        !(given.bauds.empty() && given.modes.empty()))
        throw CLI::ValidationError("--baud, --mode", "these are for serial lines; leave them out");
    ScanOptions options;
    options.ways = waysOf(given);
    options.stations = parseStations(given.stations).stations;
    options.pluginPath = given.pluginPath;
    options.capture = captureOf(*given.capture);
    options.asJson = given.format == "json";
    options.sitePath = given.sitePath;
    options.overwrites = given.overwrites;
    return options;
}

void addLineOptions(CLI::App& command, GivenScan& given) {
    command
        .add_option("LINK", given.link,
                    "udp://HOST:PORT or \"serial:DEVICE?baud=N&parity=none|even|odd&stop=1|2\"")
        ->required()
        ->check(linkFault);
    command
        .add_option("--stations", given.stations,
                    "Which stations are asked, such as 0..20, 5 or 1,4..9; without it 0..253")
        ->check(stationsFault);
    command
        .add_option("--baud", given.bauds,
                    "Baud rates of a serial line to try, such as 9600,19200; without it that of LINK")
        ->delimiter(',')
        ->check(baudFault);
    command
        .add_option("--mode", given.modes,
                    "Transmit types of a serial line to try, data or break or both as "
                    "data,break; without it data")
        ->delimiter(',')
        ->check(CLI::IsMember(modeNames))
        ->type_name("MODE");
    command
        .add_option("--timeout", given.timeout,
                    "How long an answer may take, such as 500ms; without it 200ms")
        ->check(durationFault);
    command
        .add_option("--break-delay", given.breakDelayMs,
                    "Milliseconds of break before each telegram of mode break; without it 10")
        ->check(breakDelayFault);
}

} // namespace

void addScanCommand(CLI::App& program, ExitStatus& status) {
    CLI::App* const command = program.add_subcommand(
        "scan", "Tell which stations of a line answer, and write a site file to start from");
    const auto given = std::make_shared<GivenScan>();
    addLineOptions(*command, *given);
    command->add_option("--format", given->format, "How replies are written; without it text")
        ->check(CLI::IsMember(formatNames))
        ->type_name("FORMAT");
    CLI::Option* const output =
        command->add_option("-o,--output", given->sitePath, "Write a site file of the stations that answer");
    command->add_flag("--force", given->overwrites, "Overwrite that file")->needs(output);
    command->add_option(
        "--plugin", given->pluginPath,
        "Driver plug-in; without it SBusDriver beside this program or in the library directory");
    given->capture = addCaptureOptions(*command);
    command->callback([given, &status] { status = scanStations(optionsOf(*given)); });
}

} // namespace host
