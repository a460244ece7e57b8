#include "LineMessages.h"

#include "FailureText.h"

#include <chrono>

namespace host {

namespace {

// A damaged answer and a foreign one are failures of two kinds.
int kindOf(const RequestEnd& end) {
    constexpr int answers = 8; // more than there are
    return static_cast<int>(end.kind) * answers + (end.exchange ? static_cast<int>(end.exchange->answer) : 0);
}

} // namespace

void LineMessages::requestEnded(const RequestEnd& end) {
    const FailureCollapser::Source source{end.channel->id, end.rtu->id};
    const bool isGood = end.kind == RequestEnd::Kind::Answered;
    // Most requests are answered, and then a text is made only when a failure is over.
    const std::string reason = failureReason(end);
    const std::lock_guard<std::mutex> lock(mutex);
    if (isGood && !collapser.isFailing(source))
        return;
    const std::string who = nameOf(*end.channel, end.rtu);
    const std::optional<std::string> message =
        isGood ? collapser.succeeded(source, who)
               : collapser.failed(source, kindOf(end), who + ": " + reason, std::chrono::steady_clock::now());
    if (message)
        messages.tell(*message);
}

void LineMessages::refusalsFound(const Channel& channel, const Rtu& rtu, const RefusalNews& news) {
    messages.tell(nameOf(channel, &rtu) + ": " + refusalNewsText(news));
}

void LineMessages::lineOpened(const Channel& channel, bool /*onSecondary*/, int result) {
    const FailureCollapser::Source source{channel.id, 0};
    const std::string who = nameOf(channel, nullptr);
    const std::lock_guard<std::mutex> lock(mutex);
    const std::optional<std::string> message =
        result == 0 ? collapser.succeeded(source, who)
                    : collapser.failed(source, 0, who + ": " + cannotOpenReason(channel),
                                       std::chrono::steady_clock::now());
    if (message)
        messages.tell(*message);
}

} // namespace host
