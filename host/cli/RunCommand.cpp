#include "RunCommand.h"

#include "GatewayServices.h"
#include "OutputWatch.h"
#include "RunServices.h"
#include "commands/CommandDispatcher.h"
#include "plan/DescriptorNeed.h"
#include "plan/LineChecks.h"
#include "runtime/HostRuntime.h"
#include "runtime/LineMessages.h"
#include "runtime/StartThread.h"
#include "services/console/ConsoleService.h"
#include "services/console/Journal.h"
#include "services/console/StopSignal.h"
#include "services/console/StreamWriter.h"
#include "services/console/Summary.h"
#include "services/console/Terminal.h"
#include "services/control/ControlGroup.h"
#include "services/pulses/PulseSupervisor.h"
#include "site/CountText.h"
#include "site/Loopback.h"

#include <ControlCharacters.h>
#include <DescriptorLimit.h>
#include <HalvexDriverComponent/CLogger.h>
#include <HalvexDriverComponent/CRtu.h>

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
// For what is said before a forced end.
constexpr std::chrono::milliseconds lastWords{200};

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

// Empty, or by how much the site is too large for this process. Qt ends a program that has no descriptor left
// for a thread, so this is asked before anything is opened.
std::string descriptorFault(const Site& site, const RunOptions& options) {
    const std::size_t needed =
        descriptorsNeeded(site, {options.log.has_value(), options.capture.has_value(), options.takesControl});
    const std::size_t allowed = descriptors::limit();
    if (needed <= allowed)
        return {};
    return "the site needs up to " + std::to_string(needed) +
           " files and sockets at once, and this process may have " + std::to_string(allowed) +
           "; raise its limit (ulimit -Hn, or LimitNOFILE= of its service), or divide the site";
}

void waitForTheEnd(const RunOptions& options, OutputWatch& output) {
    const Clock::time_point start = Clock::now();
    const auto isOver = [&] { return options.duration && Clock::now() - start >= *options.duration; };
    while (!output.isOver() && !isOver() && !stopsignal::isRequested())
        std::this_thread::sleep_for(lookPeriod);
}

// Ends the pulses that run, while lines and console still work. False when an output had to be left on, which
// is told. A second signal ends the wait, and then the program.
bool endPulses(RunServices& services, CommandDispatcher& dispatcher, Console& console) {
    services.tellEnding();
    PulseSupervisor& pulses = services.pulses();
    pulses.beginEnding();
    dispatcher.abandonWaiting(); // nothing stands before the off commands
    while (!pulses.haveEnded() && !stopsignal::isForced())
        std::this_thread::sleep_for(lookPeriod);
    const std::vector<std::string> left = pulses.stillOn();
    for (const std::string& one : left)
        console.error.write(journal::mark(Severity::Error) + one + '\n');
    stopsignal::releaseSecond();
    if (stopsignal::isForced()) {
        console.error.waitUntilIdle(lastWords);
        stopsignal::endAtOnce();
    }
    return left.empty();
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
    std::cerr << journal::mark(Severity::Error) << "sbus-host: " << text::printable(fault) << '\n';
    return ExitStatus::Configuration;
}

void tellLosses(const ConsoleService& shown, Console& console) {
    if (shown.lostChanges() > 0)
        console.error.write(journal::mark(Severity::Warning) + countWereText(shown.lostChanges(), "change") +
                            " lost: they came faster than the output was read\n");
    const LoggerFigures log = CLogger::GetInstance()->figures();
    if (const auto lostLines = log.dropped + log.queued; lostLines > 0)
        console.error.write(journal::mark(Severity::Warning) + countWereText(lostLines, "log line") +
                            " lost: the log directory's disk is full, fails or is too slow\n");
}

ExitStatus runLoadedSite(const Site& site, const RunOptions& options, OutputFormat format, Console& console) {
    ValueStore store(site);
    Messages messages;
    LineMessages lineMessages(messages);
    HostRuntime runtime(site, store, &lineMessages);
    runtime.supervisePolls();
    std::string fault = runtime.prepare(options.pluginPath);
    if (!fault.empty())
        return failed(fault);
    CommandDispatcher dispatcher(
        site, [&runtime](int channelId, int rtuId) { return runtime.findRtu(channelId, rtuId); },
        [&runtime](int channelId, int rtuId) {
            return runtime.requestEnds().wasLastRequestRefused(channelId, rtuId);
        },
        [&runtime](CRtu& rtu, const CommandAction& action, CReply* reply) {
            const std::unique_lock<std::mutex> hold = runtime.holdPoints(rtu.chennelId());
            return callDriver(rtu, action, reply);
        });
    RunServices services(options, format, {site, store, messages, runtime, dispatcher, console});
    fault = services.start();
    if (!fault.empty())
        return failed(fault);
    fault = runtime.run();
    if (!fault.empty()) {
        services.stop();
        dispatcher.stop();
        runtime.stopAtOnce();
        return failed(fault);
    }
    options.haveStarted();
    stopsignal::holdSecond();
    OutputWatch output(options, console, services.console());
    waitForTheEnd(options, output);
    const bool allOff = endPulses(services, dispatcher, console);

    // What counts is how things stood at the end of the run, not what closing the lines makes of it.
    store.freeze();
    services.stop();
    dispatcher.stop();
    const std::vector<RtuOutcome> outcomes = collectOutcomes(runtime.rtuFigures(), store);
    const std::vector<ChannelFigures> channels = runtime.channelFigures();
    runtime.stop();
    CLogger::GetInstance()->flush(logFlushMs);
    if (format != OutputFormat::Messages)
        (isForReading(format) ? console.out : console.error)
            .write(summaryText(outcomes, channels) + services.console().lastWords());
    tellLosses(services.console(), console);
    const ExitStatus status = judge(outcomes);
    return allOff || status != ExitStatus::Good ? status : ExitStatus::CommunicationFailed;
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
    if (options.takesControl)
        checkControlGroup(loaded.site, loaded.findings);
    checkGatewayServices(loaded.site, loaded.findings);
    for (const Finding& finding : loaded.findings.all())
        std::cerr << journal::mark(finding.severity) << toText(finding) << '\n';
    if (loaded.findings.hasErrors())
        return ExitStatus::Configuration;
    if (const std::string fault = descriptorFault(loaded.site, options); !fault.empty())
        return failed(fault);
    if (options.isOnLoopback)
        moveToLoopback(loaded.site, loopbackFolderOf(options.sitePath));
    terminal::survivePipeEnd();
    stopsignal::install();
    Console console;
    ExitStatus status = runLoadedSite(loaded.site, options, format, console);
    const bool isRead = isReadToTheEnd(console);
    if (!OutputWatch::tellLosses(console)) {
        console.error.waitUntilIdle(lastWords);
        status = status == ExitStatus::Good ? ExitStatus::CommunicationFailed : status;
    }
    // A thread that waits for a reader for ever would hold up the program's orderly end.
    if (!isRead)
        std::_Exit(static_cast<int>(status));
    return status;
}

} // namespace host
