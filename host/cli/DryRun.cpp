#include "oneshot/CommandSender.h"
#include "oneshot/Commands.h"
#include "oneshot/RecordingLink.h"
#include "oneshot/WriteSteps.h"

#include "services/console/StopSignal.h"
#include "services/console/Terminal.h"
#include "telegram/Framing.h"
#include "telegram/RequestTelegram.h"
#include "telegram/TelegramText.h"

#include <iostream>

namespace host {

namespace {

// Nothing will answer, so nothing is waited for.
ControllerLine impatient(ControllerLine line) {
    line.timeout = std::chrono::milliseconds(1);
    return line;
}

class DryRun {
public:
    explicit DryRun(const WriteOptions& writeOptions)
        : options(writeOptions), line(impatient(options.controller.line)),
          site(makeWriteSite(line, options.writes)), sender(line, site, [this](const LinkEnd&) {
              return std::make_unique<RecordingLink>(lineType(), record);
          }) {}

    std::string open() { return sender.open(options.controller.pluginPath); }

    // False when the driver makes no telegram of a step.
    bool tellSteps() {
        for (const WriteStep& step : planWriteSteps(options.writes)) {
            record.take();
            const CommandEnding ending = sender.send(step.action);
            if (!tellTelegrams(step)) {
                tellError(nameOf(line) + ": " + ending.reason);
                return false;
            }
        }
        return true;
    }

    void tellReads() const {
        const std::string reads = elementsText(site.channels.front().rtus.front());
        if (!reads.empty())
            std::cout << "when the line connects, the driver also reads: " << reads << '\n';
        if (options.verify)
            std::cout << "to verify, everything that was written is read back\n";
    }

private:
    LineType lineType() const { return site.channels.front().type; }

    bool tellTelegrams(const WriteStep& step) {
        const Framing framing = framingOf(lineType(), line.transmitType);
        bool isTold = false;
        for (const TelegramBytes& telegram : record.take()) {
            if (!isWriteTelegram(framing, telegram))
                continue; // what the driver reads when the line connects
            std::cout << telegramText(framing, telegram, step.isFloat) << "\n  " << breakText()
                      << hexText(telegram) << '\n';
            isTold = true;
        }
        return isTold;
    }

    std::string breakText() const {
        return framingOf(lineType(), line.transmitType) == Framing::BreakMode
                   ? "break of " + std::to_string(line.breakDelayMs) + " ms, "
                   : "";
    }

    const WriteOptions& options;
    const ControllerLine line;
    const Site site;
    TelegramRecord record;
    CommandSender sender; // ends before what its line records to
};

} // namespace

ExitStatus tellWrites(const WriteOptions& options) {
    terminal::survivePipeEnd();
    stopsignal::install();
    DryRun run(options);
    const std::string fault = run.open();
    if (!fault.empty()) {
        tellError(fault);
        return ExitStatus::Configuration;
    }
    std::cout << nameOf(options.controller.line) << ", nothing is sent:\n";
    if (!run.tellSteps())
        return ExitStatus::CommunicationFailed;
    run.tellReads();
    std::cout << std::flush;
    return ExitStatus::Good;
}

} // namespace host
