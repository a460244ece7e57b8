#include "StationScanner.h"

#include "runtime/FailureText.h"
#include "runtime/OpenFailureText.h"
#include "services/console/StopSignal.h"
#include "telegram/AnswerTelegram.h"
#include "telegram/TelegramText.h"

#include <utility>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;
using Kind = ScanReply::Kind;

constexpr std::chrono::milliseconds lookPeriod{20}; // how soon a signal is seen
// Beyond the answer's time-out: a send and a drain may take 5 s each, the next try to open the line 1 s.
constexpr std::chrono::seconds patienceBeyondTimeOut{15};

int registerIn(const TelegramBytes& payload) {
    std::uint32_t word = 0;
    for (const std::uint8_t byte : payload)
        word = word << 8 | byte;
    return static_cast<int>(word);
}

ScanReply replyOf(const RequestEnd& end, const Exchange& exchange) {
    ScanReply reply;
    reply.station = end.rtu->station;
    reply.roundTrip = exchange.roundTrip;
    switch (exchange.answer) {
    case Answer::Silent:
        break;
    case Answer::Good:
        reply.kind = Kind::Answers;
        reply.value = registerIn(payloadOf(exchange.framing, exchange.received));
        break;
    case Answer::Refused:
        reply.kind = Kind::Refuses;
        reply.fault = refusalText(end);
        break;
    case Answer::Damaged:
    case Answer::Foreign:
        reply.kind = Kind::Unclear;
        reply.fault = answerText(exchange.framing, exchange.sent, exchange.received, false);
        break;
    }
    return reply;
}

} // namespace

StationScanner::StationScanner(const ControllerLine& controllerLine, const std::vector<unsigned>& stations)
    : line(controllerLine), site(makeScanSite(line, stations)), runtime(site, *this, this),
      watch(runtime.exchanges().watch([this](const Exchange& exchange) { noteExchange(exchange); })) {}

// The driver goes on asking for as long as a station is silent; nobody wants the answer to its last request.
StationScanner::~StationScanner() {
    runtime.stopAtOnce();
}

std::string StationScanner::open(const std::string& pluginPath) {
    return runtime.start(pluginPath);
}

LineScan StationScanner::scan(const Progress& progress) {
    const std::chrono::milliseconds patience = line.timeout + patienceBeyondTimeOut;
    Clock::time_point lastNews = Clock::now();
    std::size_t askedBefore = 0;
    std::unique_lock<std::mutex> lock(mutex);
    while (!isOver() && !stopsignal::isRequested()) {
        news.wait_for(lock, lookPeriod);
        const std::size_t asked = replies.size();
        if (asked != askedBefore)
            lastNews = Clock::now();
        else if (Clock::now() - lastNews > patience)
            lineFault = toText(line.end) + ": the driver gave no result; check the line";
        askedBefore = asked;
        lock.unlock();
        progress(asked);
        lock.lock();
    }
    LineScan result;
    result.line = line;
    result.isInterrupted = !isOver();
    result.lineFault = lineFault;
    for (const auto& [rtuId, reply] : replies)
        result.replies.push_back(reply);
    return result;
}

// Under the mutex.
bool StationScanner::isOver() {
    return !lineFault.empty() || replies.size() == site.channels.front().rtus.size();
}

void StationScanner::noteExchange(const Exchange& exchange) {
    const std::lock_guard<std::mutex> lock(mutex);
    lastExchange = exchange;
}

// While stations are silent the driver asks those anew that it has asked: only the first time counts.
void StationScanner::requestEnded(const RequestEnd& end) {
    const std::lock_guard<std::mutex> lock(mutex);
    const std::optional<Exchange> exchange = std::exchange(lastExchange, std::nullopt);
    if (end.kind == RequestEnd::Kind::LineFailed)
        lineFault = toText(line.end) + ": " + failureReason(end);
    if (!exchange || end.kind == RequestEnd::Kind::LineFailed || replies.count(end.rtu->id) > 0)
        return;
    replies.emplace(end.rtu->id, replyOf(end, *exchange));
    news.notify_all();
}

void StationScanner::lineOpened(const Channel& /*channel*/, bool /*onSecondary*/, int result) {
    if (result == 0)
        return;
    const std::lock_guard<std::mutex> lock(mutex);
    lineFault = cannotOpenReason(line.end, result) + (isInUse(result) ? lineInUseHint(line) : "");
    news.notify_all();
}

} // namespace host
