#include "SiteLog.h"

#include "LogDirectory.h"
#include "runtime/ExchangeText.h"
#include "runtime/StartThread.h"

#include <ControlCharacters.h>
#include <HalvexDriverComponent/CLogger.h>

#include <chrono>
#include <filesystem>

namespace host {

namespace {

constexpr int hostItself = 0;

void record(int channelId, std::int64_t timeMs, const std::string& text) {
    const std::chrono::system_clock::time_point time{std::chrono::milliseconds(timeMs)};
    CLogger::GetInstance()->writeRecord(channelId, time, text);
}

void recordExchange(const Site& site, const Exchange& exchange) {
    for (const TelegramLine& telegram : telegramsOf(exchangeAsJson(site, exchange)))
        record(exchange.channelId, telegram.timeMs,
               telegram.text + (telegram.hex.empty() ? "" : "  | " + telegram.hex));
}

} // namespace

SiteLog::SiteLog(const LogOptions& logOptions) : options(logOptions) {}

SiteLog::~SiteLog() {
    stop();
}

std::string SiteLog::start(RunningSite& runningSite) {
    if (std::string fault = prepareLogDirectory(options.directory); !fault.empty())
        return fault;
    LoggerSettings settings;
    settings.directory = options.directory;
    settings.fileBytes = options.fileBytes;
    settings.filesPerChannel = options.files;
    if (!CLogger::GetInstance()->configure(settings))
        return threadRefusal("the log files");
    site = &runningSite;
    site->messages.setKeeper(
        [](const Message& message) { record(hostItself, message.timeMs, text::printable(message.text)); });
    // On the line's thread, as the driver's own lines are, so that the file has all in their order.
    if (options.withFrames)
        watch = site->exchanges.watch(
            [&observed = site->site](const Exchange& exchange) { recordExchange(observed, exchange); });
    return {};
}

void SiteLog::stop() {
    if (site == nullptr)
        return;
    watch.reset();
    site->messages.setKeeper(nullptr);
    site = nullptr;
}

std::vector<ServiceFigure> SiteLog::figures() const {
    const LoggerFigures figures = CLogger::GetInstance()->figures();
    return {{"written", figures.written}, {"lost", figures.dropped}};
}

} // namespace host
