#include "RunCommand.h"

#include "commands/CommandDispatcher.h"
#include "runtime/HostRuntime.h"
#include "runtime/RunLog.h"
#include "services/RunningSite.h"
#include "services/clocks/ClockSchedule.h"
#include "services/console/StopSignal.h"
#include "services/console/StreamWriter.h"
#include "services/console/Terminal.h"
#include "services/control/RunControl.h"
#include "services/pulses/PulseSupervisor.h"
#include "site/SiteFile.h"
#include "values/ValueStore.h"

#include <HalvexDriverComponent/CLogger.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <thread>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds updatePeriod{50}; // how soon a change shows, and a signal is seen
constexpr int logFlushMs = 100;
// For a reader that is slow to take the last lines after a signal.
constexpr std::chrono::milliseconds lastRead{25};

OutputFormat chooseFormat(const RunOptions& options) {
    if (options.format)
        return *options.format;
    // Frames run on; a table would wipe them off the terminal.
    const bool table = terminal::isOutputTerminal() && !options.frames;
    return table ? OutputFormat::Table : OutputFormat::Lines;
}

bool isForReading(OutputFormat format) {
    return format == OutputFormat::Table || format == OutputFormat::Lines;
}

// Empty, or what is wrong.
std::string configureLogFiles(const RunOptions& options) {
    if (options.logDirectory.empty())
        return {};
    std::error_code failure;
    std::filesystem::create_directories(std::filesystem::u8path(options.logDirectory), failure);
    if (failure)
        return "log directory " + options.logDirectory + " cannot be made: " + failure.message() +
               "; name one that may be written with --log-dir";
    LoggerSettings settings;
    settings.directory = options.logDirectory;
    settings.traceFrames = options.frames;
    CLogger::GetInstance()->configure(settings);
    return {};
}

void showUntilDone(const RunOptions& options, const Console& console, Output& output, RunLog& log) {
    const Clock::time_point start = Clock::now();
    for (;;) {
        if (console.error.isIdle())
            output.tell(log.takeMessages());
        const bool isRead = output.update();
        const bool isOver = options.duration && Clock::now() - start >= *options.duration;
        if (!isRead || isOver || stopsignal::isRequested())
            return;
        std::this_thread::sleep_for(updatePeriod);
    }
}

// Whether all that was written has been read. A reader may take its time, until the user ends the program.
bool isReadToTheEnd(const Console& console) {
    for (;;) {
        const bool isEnding = stopsignal::isRequested();
        if (console.out.waitUntilIdle(lastRead) && console.error.waitUntilIdle(lastRead))
            return true;
        if (isEnding)
            return false;
    }
}

SiteFigures figuresOf(const HostRuntime& runtime, const RunLog& log) {
    SiteFigures figures{runtime.channelFigures(), runtime.rtuFigures()};
    for (RtuFigures& one : figures.rtus)
        if (log.isSilent(one.channel->id, one.rtu->id))
            one.status.connected = false;
    return figures;
}

std::vector<RtuOutcome> outcomesOf(const HostRuntime& runtime, const ValueStore& store, const RunLog& log) {
    std::vector<RtuOutcome> outcomes = collectOutcomes(figuresOf(runtime, log).rtus, store);
    for (RtuOutcome& outcome : outcomes)
        outcome.wasRefused = log.wasRefused(outcome.figures.channel->id, outcome.figures.rtu->id);
    return outcomes;
}

// False when the user has named a socket that cannot be had. A site's own socket may belong to another host
// that runs it: then this one polls all the same.
bool openControl(RunControl& control, CommandTaker& commands, const RunOptions& options, RunLog& log) {
    const std::string fault = control.start(commands, options.controlPath, options.sitePath);
    if (fault.empty())
        return true;
    if (options.controlPath.empty()) {
        log.addMessage(fault + "; sbus-host ctl cannot reach this one. Give it a socket with --control PATH");
        return true;
    }
    std::cerr << "sbus-host: " << fault << '\n';
    return false;
}

// What a running host does with commands: gives them to the driver one at a time, watches over pulses, sets
// clocks. Made once the runtime has started; ends before it does.
class Commands {
public:
    Commands(const Site& site, ValueStore& store, HostRuntime& runtime, RunLog& log)
        : dispatcher(
              site, [&runtime](int channelId, int rtuId) { return runtime.findRtu(channelId, rtuId); },
              [&log](int channelId, int rtuId) { return log.wasLastRequestRefused(channelId, rtuId); }),
          pulses(store, dispatcher, [&log](const std::string& message) { log.addMessage(message); }),
          clocks(site, dispatcher, [&log](const std::string& message) { log.addMessage(message); }),
          running{site,   store,    exchanges,
                  pulses, messages, [&runtime, &log] { return figuresOf(runtime, log); },
                  {}} {
        pulses.start(running);
        clocks.start(running);
    }
    ~Commands() { stop(); }

    CommandTaker& taker() { return pulses; }
    void stop() {
        clocks.stop();
        pulses.stop();
        dispatcher.stop();
    }

private:
    CommandDispatcher dispatcher;
    PulseSupervisor pulses;
    ClockSchedule clocks;
    ExchangeFeed exchanges;
    Messages messages;
    RunningSite running;
};

ExitStatus runLoadedSite(const Site& site, const RunOptions& options, OutputFormat format, Console& console) {
    ValueStore store(site);
    RunLog log(site, options.frames);
    HostRuntime runtime(site, store);
    RunControl control(store, runtime, log, [&runtime, &store, &log] {
        return HostFigures{runtime.channelFigures(), outcomesOf(runtime, store, log)};
    });
    const std::string fault = runtime.start(options.pluginPath);
    if (!fault.empty()) {
        std::cerr << "sbus-host: " << fault << '\n';
        return ExitStatus::Configuration;
    }
    Commands commands(site, store, runtime, log);
    if (options.takesControl && !openControl(control, commands.taker(), options, log))
        return ExitStatus::Configuration;
    const std::unique_ptr<Output> output =
        makeOutput(format, console, "sbus-host  " + options.sitePath, store,
                   [&runtime, &log] { return figuresOf(runtime, log); });
    showUntilDone(options, console, *output, log);

    // What counts is how things stood at the end of the run, not what closing the lines makes of it.
    store.freeze();
    control.stop();
    commands.stop();
    const std::vector<RtuOutcome> outcomes = outcomesOf(runtime, store, log);
    const std::vector<ChannelFigures> channels = runtime.channelFigures();
    output->tell(log.takeMessages());
    output->finish();
    runtime.stop();
    CLogger::GetInstance()->flush(logFlushMs);
    (isForReading(format) ? console.out : console.error).write(summaryText(outcomes, channels));
    if (output->lostChanges() > 0)
        console.error.write(std::to_string(output->lostChanges()) +
                            " changes were lost: they came faster than the output was read\n");
    if (const auto dropped = CLogger::GetInstance()->figures().dropped; dropped > 0)
        console.error.write(std::to_string(dropped) +
                            " log lines were lost: the log directory's disk is full, fails or is too slow\n");
    return judge(outcomes);
}

} // namespace

ExitStatus runSite(const RunOptions& options) {
    const OutputFormat format = chooseFormat(options);
    if (format == OutputFormat::Table && options.frames && terminal::isErrorTerminal()) {
        std::cerr << "sbus-host: --frames would run through the table; choose --format lines, or send the "
                     "frames to a file with 2>FILE\n";
        return ExitStatus::Configuration;
    }
    const LoadedSite loaded = loadSite(options.sitePath);
    for (const Finding& finding : loaded.findings.all())
        std::cerr << toText(finding) << '\n';
    if (loaded.findings.hasErrors())
        return ExitStatus::Configuration;
    const std::string fault = configureLogFiles(options);
    if (!fault.empty()) {
        std::cerr << "sbus-host: " << fault << '\n';
        return ExitStatus::Configuration;
    }
    terminal::survivePipeEnd();
    stopsignal::install();
    Console console;
    const ExitStatus status = runLoadedSite(loaded.site, options, format, console);
    // A thread that waits for a reader for ever would hold up the program's orderly end.
    if (!isReadToTheEnd(console))
        std::_Exit(static_cast<int>(status));
    return status;
}

} // namespace host
