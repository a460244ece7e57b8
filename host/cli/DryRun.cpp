#include "oneshot/CommandSender.h"
#include "oneshot/Commands.h"
#include "oneshot/SilentLink.h"
#include "oneshot/WriteSteps.h"

#include "services/console/StopSignal.h"
#include "services/console/Terminal.h"
#include "site/IeeeWord.h"
#include "site/NumberText.h"
#include "telegram/Framing.h"
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
          site(makeWriteSite(line, options.writes)),
          sender(line, site, [this](const LinkEnd&) { return std::make_unique<SilentLink>(lineType()); }) {}

    std::string open() { return sender.open(options.controller.pluginPath); }

    // False when the driver makes no telegram of a step.
    bool tellSteps() {
        for (const WriteStep& step : planWriteSteps(options.writes)) {
            const CommandEnding ending = sender.send(step.action);
            if (ending.telegrams.empty()) {
                tellError(nameOf(line) + ": " + ending.reason);
                return false;
            }
            tellTelegrams(step, ending.telegrams);
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

    void tellTelegrams(const WriteStep& step, const std::vector<TelegramBytes>& telegrams) const {
        for (const TelegramBytes& telegram : telegrams)
            std::cout << telegramText(framingOf(lineType(), line.transmitType), telegram, step.isFloat)
                      << ieeeText(step) << "\n  " << breakText() << hexText(telegram) << '\n';
    }

    // " (R30 is 1.5)": telegrams carry such numbers as words.
    std::string ieeeText(const WriteStep& step) const {
        std::string text;
        for (const std::size_t place : step.writes)
            if (const ElementWrite& write = options.writes[place]; write.isIeee) {
                text += (text.empty() ? " (" : ", ") + toText(write.address) + " is ";
                appendSingle(text, numberOfIeeeWord(ieeeWordOf(write.value)));
            }
        return text.empty() ? text : text + ")";
    }

    std::string breakText() const {
        return lineType() == LineType::Serial && line.transmitType == TransmitType::Break
                   ? "break of " + std::to_string(line.breakDelayMs) + " ms, "
                   : "";
    }

    const WriteOptions& options;
    const ControllerLine line;
    const Site site;
    CommandSender sender;
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
