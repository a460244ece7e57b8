#include "ConsoleService.h"

#include "StreamWriter.h"
#include "runtime/ExchangeText.h"

namespace host {

namespace {

constexpr std::chrono::milliseconds updatePeriod{50}; // how soon a change shows

} // namespace

ConsoleService::ConsoleService(Console& shownOn, OutputFormat outputFormat, const std::string& tableTitle,
                               bool withFrames)
    : console(shownOn), format(outputFormat), title(tableTitle), showsFrames(withFrames) {}

ConsoleService::~ConsoleService() {
    stop();
}

std::string ConsoleService::start(RunningSite& runningSite) {
    site = &runningSite;
    output = makeOutput(format, console, title, site->values, site->figures);
    if (showsFrames)
        frames = site->exchanges.watch([this](const Exchange& exchange) {
            for (const std::string& line : exchangeLines(exchangeAsJson(site->site, exchange)))
                site->messages.tell(line);
        });
    thread.start(updatePeriod, [this] { show(); });
    return {};
}

// Messages wait in their own place while the reader of the error output is busy.
void ConsoleService::show() {
    if (console.error.isIdle())
        output->tell(site->messages.take());
    if (!output->update())
        closed.store(true, std::memory_order_release);
    lost.store(output->lostChanges(), std::memory_order_release);
}

void ConsoleService::stop() {
    if (!thread.isRunning())
        return;
    frames.reset();
    thread.stop();
    output->tell(site->messages.take());
    output->finish();
    lost.store(output->lostChanges(), std::memory_order_release);
}

std::vector<ServiceFigure> ConsoleService::figures() const {
    return {{"lost", lostChanges()}};
}

} // namespace host
