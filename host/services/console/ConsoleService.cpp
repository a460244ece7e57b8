#include "ConsoleService.h"

#include "StreamWriter.h"
#include "runtime/ExchangeText.h"
#include "site/CountText.h"
#include "values/TimeText.h"

#include <QDateTime>

#include <ControlCharacters.h>

#include <utility>

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
        watch = site->exchanges.watch([this](const Exchange& exchange) { frames.add(exchange); });
    try {
        thread.start("the console", updatePeriod, [this] { show(); });
    } catch (...) {
        output.reset(); // gives the terminal back for the message
        throw;
    }
    return {};
}

// Messages and frames wait in their own places while the reader of the error output is busy.
void ConsoleService::show() {
    if (console.error.isIdle())
        tellNews();
    if (!output->update())
        closed.store(true, std::memory_order_release);
    lost.store(output->lostChanges(), std::memory_order_release);
}

void ConsoleService::tellNews() {
    output->showFrames(takeFrames());
    std::vector<Message> messages = site->messages.takeWithTimes();
    for (Message& message : messages) // they quote what systems and controllers say
        message.text = text::printable(message.text);
    output->tell(messages);
}

std::vector<std::string> ConsoleService::takeFrames() {
    const ExchangeQueue::Taken taken = frames.take();
    std::vector<std::string> lines;
    for (const Exchange& exchange : taken.exchanges)
        for (std::string& line : exchangeLines(exchangeAsJson(site->site, exchange)))
            lines.push_back(std::move(line));
    if (taken.lost > 0)
        lines.push_back(localTimeText(QDateTime::currentMSecsSinceEpoch()) + "  " +
                        countWereText(taken.lost, "frame") + " lost: more came than was read");
    return lines;
}

void ConsoleService::stop() {
    if (!thread.isRunning())
        return;
    watch.reset();
    thread.stop();
    tellNews();
    output->finish();
    lost.store(output->lostChanges(), std::memory_order_release);
}

std::vector<ServiceFigure> ConsoleService::figures() const {
    return {{"lost", lostChanges()}};
}

} // namespace host
