#include "CommandSender.h"

#include "commands/CommandText.h"
#include "commands/DriverCall.h"
#include "runtime/FailureText.h"
#include "runtime/OpenFailureText.h"
#include "services/console/StopSignal.h"
#include "telegram/RequestTelegram.h"

#include <HalvexDriverComponent/CReply.h>
#include <HalvexDriverComponent/CRtu.h>

#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;
using Halvex::DriverErrorResult;

constexpr std::chrono::milliseconds lookPeriod{20}; // how soon a signal is seen
// Beyond the answer's time-out: a poll in progress, and 5 s each for a send and for a drain of the line.
constexpr std::chrono::seconds patienceBeyondTimeOut{15};
// A line that opens and closes again without sending so often in a row is no use.
constexpr int mostTries = 5;

CommandEnding notSent(const std::string& reason) {
    CommandEnding ending;
    ending.reason = reason;
    return ending;
}

} // namespace

CommandSender::CommandSender(const ControllerLine& controllerLine, const Site& writeSite,
                             HostRuntime::LinkFactory linkFactory)
    : line(controllerLine), site(writeSite), runtime(site, *this, this, std::move(linkFactory)),
      watch(runtime.exchanges().watch([this](const Exchange& exchange) { noteExchange(exchange); })) {}

CommandSender::~CommandSender() {
    // While this object still is the core.
    if (stopsignal::isRequested())
        runtime.stopAtOnce();
    else
        runtime.stop();
}

std::string CommandSender::open(const std::string& pluginPath) {
    return runtime.start(pluginPath);
}

// Polls of the same RTU end, too; only what has sent a write is the command's.
void CommandSender::noteExchange(const Exchange& exchange) {
    if (!isWriteTelegram(exchange.framing, exchange.sent))
        return;
    const std::lock_guard<std::mutex> lock(mutex);
    telegrams.push_back(exchange.sent);
    isWriteOnTheWay = true;
}

void CommandSender::requestEnded(const RequestEnd& end) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (std::exchange(isWriteOnTheWay, false))
        writeEnd = end;
}

void CommandSender::lineOpened(const Channel& /*channel*/, bool /*onSecondary*/, int result) {
    const std::lock_guard<std::mutex> lock(mutex);
    lineFault =
        result == 0 ? "" : cannotOpenReason(line.end, result) + (isInUse(result) ? lineInUseHint(line) : "");
}

bool CommandSender::hasSentWrite() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return !telegrams.empty();
}

std::string CommandSender::awaitLine() {
    for (;;) {
        if (runtime.channelStatus(site.channels.front()).connected)
            return {};
        if (stopsignal::isRequested())
            return "interrupted before it was sent";
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (!lineFault.empty())
                return lineFault;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

CommandEnding CommandSender::send(const CommandAction& action) {
    // The line may be closed and opened anew between the look at it and the command, and shortly after it was
    // opened the driver takes a command only to end it at once. Nothing was sent then.
    for (int tries = 1;; ++tries) {
        const std::string fault = awaitLine();
        if (!fault.empty())
            return notSent(fault);
        CRtu* const rtu = runtime.findRtu(oneShotChannelId, writeRtuId);
        if (rtu == nullptr)
            return notSent("interrupted before it was sent");
        {
            const std::lock_guard<std::mutex> lock(mutex);
            telegrams.clear();
            writeEnd.reset();
        }
        auto* const reply = new CReply(rtu->GetChannel());
        const auto promise = std::make_shared<std::promise<DriverErrorResult>>();
        std::future<DriverErrorResult> replied = promise->get_future();
        reply->notify([promise](DriverErrorResult result) { promise->set_value(result); });
        const auto answer = static_cast<DriverErrorResult>(callDriver(*rtu, action, reply));
        if (answer == DriverErrorResult::Success) {
            const DriverErrorResult result = awaitReply(replied);
            if (result == DriverErrorResult::ChannelError && !hasSentWrite() && tries < mostTries)
                continue;
            return endingOf(result);
        }
        reply->release();
        if (answer != DriverErrorResult::ChannelError || tries == mostTries)
            return notSent(std::string("the driver does not take the command: ") + resultText(answer));
    }
}

// A signal ends the wait, because the end of the channel ends the reply.
DriverErrorResult CommandSender::awaitReply(std::future<DriverErrorResult>& replied) {
    const Clock::time_point patience = Clock::now() + 2 * line.timeout + patienceBeyondTimeOut;
    while (replied.wait_for(lookPeriod) != std::future_status::ready) {
        if (stopsignal::isRequested())
            runtime.stopAtOnce();
        else if (Clock::now() > patience)
            return DriverErrorResult::TimeOut;
    }
    return replied.get();
}

CommandEnding CommandSender::endingOf(DriverErrorResult result) {
    using Kind = RequestEnd::Kind;
    CommandEnding ending;
    const std::lock_guard<std::mutex> lock(mutex);
    ending.telegrams = telegrams;
    if (writeEnd ? writeEnd->kind == Kind::Answered : result == DriverErrorResult::Success) {
        ending.kind = CommandEnding::Kind::Done;
    } else if (stopsignal::isRequested()) {
        ending.kind = CommandEnding::Kind::Failed;
        ending.reason = "interrupted before it was answered; it may have been written or not";
    } else if (!writeEnd) {
        ending.kind = CommandEnding::Kind::Failed;
        ending.reason = "the line failed; check that device and cable are still plugged in";
    } else if (writeEnd->kind == Kind::Refused) {
        ending.kind = CommandEnding::Kind::Refused;
        ending.reason = "the controller refused the request (" + refusalText(*writeEnd) +
                        "); check that it has what is written, and lets it be written";
    } else {
        ending.kind = CommandEnding::Kind::Failed;
        ending.reason = failureReason(*writeEnd) + "; it may have been written or not";
        ending.isSilent = writeEnd->kind == Kind::NoAnswer || writeEnd->kind == Kind::LineFailed;
    }
    return ending;
}

} // namespace host
