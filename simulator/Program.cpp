#include "Program.h"

#include "Loopback.h"
#include "SiteFile.h"
#include "Summary.h"
#include "Units.h"

#include <ControlCharacters.h>
#include <ProgramVersion.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <optional>
#include <ostream>
#include <sstream>

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>

#include <CLI/CLI.hpp>

namespace sim {

namespace {

// The arguments as they were written.
struct Arguments {
    std::string siteFile;
    std::vector<std::string> settings;
    std::vector<std::string> sizes;
    std::vector<std::string> limits;
    std::vector<std::string> absents;
    std::string faults;
    std::optional<std::string> lateDelay;
    std::optional<std::string> duration;
    Options options;
    bool isOnLoopback = false;
};

void declare(CLI::App& app, Arguments& arguments) {
    app.allow_windows_style_options(false); // "/data/site.toml" is a path everywhere
    app.set_version_flag("--version", release::versionText("sbus-sim"), "tell version and commit and end");
    app.add_option("site", arguments.siteFile, "the site file, as the host reads it")->required();
    app.add_flag("--move", arguments.options.move,
                 "let values move, those of the site's points among them: ramps, sines, counters, toggles");
    app.add_flag(
        "--loopback", arguments.isOnLoopback,
        "play the site on this computer, as sbus-host run --loopback looks for it: 10.0.0.5 at 127.0.0.5, "
        "devices as links beside the site file");
    app.add_option(
           "--set", arguments.settings,
           "fix an element, as in 5/R200=7 (station 5), 2:5/R200=7 (on line 2), 5/R300=7.5 (floating point)")
        ->take_all()
        ->expected(1);
    app.add_option("--fault", arguments.faults,
                   "misbehave: drop=5%,late=2%,duplicate=1%,crc=1%,nak=1%,short=1%");
    app.add_option("--late-delay", arguments.lateDelay, "how late a late answer is (300ms)");
    app.add_option("--seed", arguments.options.seed, "of the faults: the same seed, the same faults (1)");
    app.add_flag("--pace", arguments.options.pace, "send serial bytes at the line's baud rate");
    app.add_option("--size", arguments.sizes, "elements that a controller has, as in R=16384")
        ->take_all()
        ->expected(1);
    app.add_option("--limit", arguments.limits,
                   "elements that a controller takes in one telegram, as in 5/read_words=20; also read_bits, "
                   "write_words")
        ->take_all()
        ->expected(1);
    app.add_option("--absent", arguments.absents, "an element that a controller does not have, as in 5/R17")
        ->take_all()
        ->expected(1);
    app.add_option("--for", arguments.duration, "end after this time, as in 10s");
}

std::string folderOf(const std::string& siteFile) {
    return std::filesystem::absolute(std::filesystem::u8path(siteFile)).parent_path().u8string();
}

bool parseSize(const std::string& text, MemorySizes& sizes) {
    const auto media = text.size() > 2 && text[1] == '=' ? mediaOf(text[0]) : std::nullopt;
    const auto count = media ? parseInteger(std::string_view(text).substr(2), 0, 65536) : std::nullopt;
    if (!count)
        return false;
    sizes.set(*media, static_cast<unsigned>(*count));
    return true;
}

// Nothing for an option that is left out.
std::optional<std::chrono::milliseconds>
readDuration(const char* option, const std::optional<std::string>& text, std::vector<std::string>& errors) {
    if (!text)
        return std::nullopt;
    const auto parsed = parseDuration(*text);
    if (parsed && parsed->count() > 0)
        return parsed;
    errors.push_back(std::string(option) + ": '" + *text +
                     "' is no time above 0; write it with its unit, as in 10s");
    return std::nullopt;
}

std::vector<Setting> readArguments(Arguments& arguments, std::optional<std::chrono::milliseconds>& duration,
                                   std::vector<std::string>& errors) {
    std::string error;
    if (!arguments.faults.empty() && !parseFaults(arguments.faults, arguments.options.faults, error))
        errors.push_back("--fault: " + error);
    Faults& faults = arguments.options.faults;
    faults.lateBy = readDuration("--late-delay", arguments.lateDelay, errors).value_or(faults.lateBy);
    duration = readDuration("--for", arguments.duration, errors);
    for (const std::string& text : arguments.sizes) {
        if (!parseSize(text, arguments.options.sizes))
            errors.push_back("--size: '" + text +
                             "' must be a letter and a number up to 65536, as in R=16384");
    }
    std::vector<Setting> settings;
    for (const std::string& text : arguments.settings) {
        if (!parseSetting(text, settings.emplace_back(), error))
            errors.push_back("--set: " + error);
    }
    return settings;
}

// A terminal that is closed ends the program, too, unless it was started with nohup.
void endAtHangUp(asio::signal_set& signals) {
#ifdef SIGHUP
    if (std::signal(SIGHUP, SIG_IGN) != SIG_IGN)
        signals.add(SIGHUP);
#else
    static_cast<void>(signals); // elsewhere there is no such signal
#endif
}

// Adds to the abilities of the site's controllers.
void readAbilities(const Arguments& arguments, Site& site, std::vector<std::string>& errors) {
    const auto add = [&](const char* option, const std::string& text, auto parse) {
        AbilitySetting setting;
        std::string error;
        bool found = false;
        if (!parse(text, setting, error)) {
            errors.push_back(std::string(option) + ": " + error);
            return;
        }
        for (LineSite& line : site.lines) {
            const auto& stations = line.stations;
            if ((setting.lineId && *setting.lineId != line.id) ||
                std::find(stations.begin(), stations.end(), setting.station) == stations.end())
                continue;
            addAbilities(line.abilities[setting.station], setting.abilities);
            found = true;
        }
        if (!found)
            errors.push_back(std::string(option) + ": '" + text + "': no such station on its line");
    };
    for (const std::string& text : arguments.limits)
        add("--limit", text, parseLimit);
    for (const std::string& text : arguments.absents)
        add("--absent", text, parseAbsent);
}

// Returns at a signal, or after `duration` where there is one.
void waitForEnd(asio::io_context& context, asio::signal_set& signals,
                const std::optional<std::chrono::milliseconds>& duration) {
    asio::steady_timer timer(context);
    signals.async_wait([&](const std::error_code&, int) { context.stop(); });
    if (duration) {
        timer.expires_after(*duration);
        timer.async_wait([&](const std::error_code&) { context.stop(); });
    }
    context.run();
}

int report(const std::vector<std::string>& errors, std::ostream& err) {
    for (const std::string& error : errors)
        err << text::printable(error) << "\n";
    err.flush();
    return exitUsage;
}

int play(const Site& site, const Arguments& arguments, const std::vector<Setting>& settings,
         const std::optional<std::chrono::milliseconds>& duration, std::ostream& out, std::ostream& err) {
    // Before the lines come up, so that no signal finds the program with lines and without a handler.
    asio::io_context context;
    asio::signal_set signals(context, SIGINT, SIGTERM);
    endAtHangUp(signals);
    Simulator simulator(site, arguments.options);
    std::vector<std::string> errors;
    for (std::size_t i = 0; i < settings.size(); ++i) {
        const std::string error = simulator.apply(settings[i]);
        if (!error.empty())
            errors.push_back("--set: '" + arguments.settings[i] + "': " + error);
    }
    if (!errors.empty())
        return report(errors, err);
    const std::string error = simulator.start();
    if (!error.empty())
        return report({error}, err);
    printLines(simulator, out);
    out << "ready" << std::endl;
    waitForEnd(context, signals, duration);
    simulator.stop();
    printCounts(simulator, out);
    return exitGood;
}

} // namespace

int runProgram(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
    CLI::App app("Plays every controller of a site, on its UDP ports and serial lines.", "sbus-sim");
    Arguments arguments;
    declare(app, arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        std::ostringstream told; // with words of the command line in it
        const int status = app.exit(error, out, told);
        err << text::printableLines(told.str());
        return status == 0 ? exitGood : exitUsage;
    }
    std::vector<std::string> errors;
    std::optional<std::chrono::milliseconds> duration;
    const std::vector<Setting> settings = readArguments(arguments, duration, errors);
    Site site = loadSite(arguments.siteFile, errors);
    if (arguments.isOnLoopback)
        site = onLoopback(std::move(site), folderOf(arguments.siteFile));
    readAbilities(arguments, site, errors);
    if (!errors.empty())
        return report(errors, err);
    return play(site, arguments, settings, duration, out, err);
}

} // namespace sim
