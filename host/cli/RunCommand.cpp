#include "RunCommand.h"

#include "RunServices.h"
#include "commands/CommandDispatcher.h"
#include "plan/LineChecks.h"
#include "runtime/HostRuntime.h"
#include "runtime/LineMessages.h"
#include "services/console/ConsoleService.h"
#include "services/console/StopSignal.h"
#include "services/console/StreamWriter.h"
#include "services/console/Summary.h"
#include "services/console/Terminal.h"
#include "site/CountText.h"
#include "site/Loopback.h"

#include <ControlCharacters.h>
#include <HalvexDriverComponent/CLogger.h>

#include <cstdlib>
#include <iostream>
#include <thread>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds lookPeriod{20}; // how soon a signal is seen
constexpr int logFlushMs = 100;
// For a reader that is slow to take the last lines after a signal.
constexpr std::chrono::milliseconds lastRead{25};

OutputFormat chooseFormat(const RunOptions& options) {
    if (options.format)
        return *options.format;
    // Frames run on; a table would wipe them off the terminal.
    const bool table = terminal::isOutputTerminal() && terminal::understandsSequences() && !options.frames;
    return table ? OutputFormat::Table : OutputFormat::Lines;
}

bool isForReading(OutputFormat format) {
    return format == OutputFormat::Table || format == OutputFormat::Lines;
}

void waitForTheEnd(const RunOptions& options, const ConsoleService& console) {
    const Clock::time_point start = Clock::now();
    const auto isOver = [&] { return options.duration && Clock::now() - start >= *options.duration; };
    while (!console.isClosed() && !isOver() && !stopsignal::isRequested())
        std::this_thread::sleep_for(lookPeriod);
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

ExitStatus failed(const std::string& fault) {
    std::cerr << "sbus-host: " << text::printable(fault) << '\n';
    return ExitStatus::Configuration;
}

void tellLosses(const ConsoleService& shown, Console& console) {
    if (shown.lostChanges() > 0)
        console.error.write(countWereText(shown.lostChanges(), "change") +
                            " lost: more came than was read of the output\n");
    if (const auto dropped = CLogger::GetInstance()->figures().dropped; dropped > 0)
        console.error.write(countWereText(dropped, "log line") +
                            " lost: the log directory's disk is full, fails or is too slow\n");
}

ExitStatus runLoadedSite(const Site& site, const RunOptions& options, OutputFormat format, Console& console) {
    ValueStore store(site);
    Messages messages;
    LineMessages lineMessages(messages);
    HostRuntime runtime(site, store, &lineMessages);
    std::string fault = runtime.prepare(options.pluginPath);
    if (!fault.empty())
        return failed(fault);
    CommandDispatcher dispatcher(
        site, [&runtime](int channelId, int rtuId) { return runtime.findRtu(channelId, rtuId); },
        [&runtime](int channelId, int rtuId) {
            return runtime.requestEnds().wasLastRequestRefused(channelId, rtuId);
        });
    RunServices services(options, format, {site, store, messages, runtime, dispatcher, console});
    fault = services.start();
    if (!fault.empty()) {
        dispatcher.stop(); // before the services that it tells results are gone
        return failed(fault);
    }
    runtime.run();
    waitForTheEnd(options, services.console());

    // What counts is how things stood at the end of the run, not what closing the lines makes of it.
    store.freeze();
    services.stop();
    dispatcher.stop();
    const std::vector<RtuOutcome> outcomes = collectOutcomes(runtime.rtuFigures(), store);
    const std::vector<ChannelFigures> channels = runtime.channelFigures();
    runtime.stop();
    CLogger::GetInstance()->flush(logFlushMs);
    (isForReading(format) ? console.out : console.error)
        .write(summaryText(outcomes, channels) + services.console().lastWords());
    tellLosses(services.console(), console);
    return judge(outcomes);
}

} // namespace

ExitStatus runSite(const RunOptions& options) {
    const OutputFormat format = chooseFormat(options);
    if (format == OutputFormat::Table && options.frames && terminal::isErrorTerminal())
        return failed(
            "--frames would run through the table; choose --format lines, or send the frames to a file "
            "with 2>FILE");
    if (format == OutputFormat::Table && terminal::isOutputTerminal() && !terminal::understandsSequences())
        return failed("a table needs a terminal that can move its cursor, which this one cannot by its TERM; "
                      "choose --format lines");
    LoadedSite loaded = loadCheckedSite(options.sitePath);
    for (const Finding& finding : loaded.findings.all())
        std::cerr << toText(finding) << '\n';
    if (loaded.findings.hasErrors())
        return ExitStatus::Configuration;
    if (options.isOnLoopback)
        moveToLoopback(loaded.site, loopbackFolderOf(options.sitePath));
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
