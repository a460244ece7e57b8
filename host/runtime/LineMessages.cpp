#include "LineMessages.h"

#include "FailureText.h"
#include "OpenFailureText.h"

#include <chrono>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;

// The sources of a channel's own messages, beside its RTUs, whose ids begin at 1.
constexpr int openSource = 0;
constexpr int endInUseSource = -1;

// A damaged answer and a foreign one are failures of two kinds. So are a command that could not be sent and a
// poll that met the dead line.
int kindOf(const RequestEnd& end) {
    constexpr int answers = 8; // more than there are
    constexpr int unsentCommand = answers - 1;
    const int detail = end.exchange ? static_cast<int>(end.exchange->answer) : 0;
    return static_cast<int>(end.kind) * answers + (end.unsentWrite.empty() ? detail : unsentCommand);
}

} // namespace

void LineMessages::requestEnded(const RequestEnd& end) {
    const FailureCollapser::Source source{end.channel->id, end.rtu->id};
    const bool isGood = end.kind == RequestEnd::Kind::Answered;
    // Most requests are answered, and then a text is made only when a failure is over.
    const std::string reason = failureReason(end);
    const std::lock_guard<std::mutex> lock(mutex);
    if (isGood)
        tellEndInUse(*end.channel, end.onSecondary, true);
    if (isGood && !collapser.isFailing(source))
        return;
    const std::string who = nameOf(*end.channel, end.rtu);
    const std::optional<std::string> message =
        isGood ? collapser.succeeded(source, who)
               : collapser.failed(source, kindOf(end), who + ": " + reason, Clock::now());
    if (message)
        messages.tell(*message, isGood ? Severity::Note : Severity::Warning);
}

void LineMessages::refusalsFound(const Channel& channel, const Rtu& rtu, const RefusalNews& news) {
    messages.tell(nameOf(channel, &rtu) + ": " + refusalNewsText(news), Severity::Warning);
}

void LineMessages::lineOpened(const Channel& channel, bool onSecondary, int result) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (const std::optional<std::string> message = openText(channel, onSecondary, result))
        messages.tell(*message, result == 0 ? Severity::Note : Severity::Warning);
    if (result == 0)
        tellEndInUse(channel, onSecondary, false);
}

// Each end fails for reasons of its own.
std::optional<std::string> LineMessages::openText(const Channel& channel, bool onSecondary, int result) {
    const FailureCollapser::Source source{channel.id, openSource};
    const std::string who = nameOf(channel, nullptr);
    if (result == 0)
        return collapser.succeeded(source, who);
    const int kind = 2 * result + (onSecondary ? 1 : 0);
    const std::string reason = cannotOpenReason(linkEndOf(channel, onSecondary), result);
    return collapser.failed(source, kind, who + ": " + reason, Clock::now());
}

// A line whose both ends are dead changes over all the time: that is told now and again, and an end that
// answers always.
void LineMessages::tellEndInUse(const Channel& channel, bool onSecondary, bool hasAnswered) {
    bool& told = toldSecondary[channel.id];
    if (told == onSecondary)
        return;
    const std::string text = nameOf(channel, nullptr) + ": changed over to its " +
                             (onSecondary ? "secondary" : "primary") + " end, " +
                             toText(linkEndOf(channel, onSecondary));
    const std::optional<std::string> message =
        collapser.failed({channel.id, endInUseSource}, onSecondary ? 1 : 0, text, Clock::now());
    if (!message && !hasAnswered)
        return;
    told = onSecondary;
    messages.tell(message.value_or(text), Severity::Warning);
}

} // namespace host
