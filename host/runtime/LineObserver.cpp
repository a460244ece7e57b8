#include "LineObserver.h"

#include "telegram/AnswerTelegram.h"
#include "telegram/Framing.h"
#include "telegram/RequestTelegram.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

// What is kept of bytes that are not the telegram and its answer: a line that never falls silent must not
// fill the memory.
constexpr std::size_t mostStrayBytes = 4'096;

void append(TelegramBytes& target, const char* bytes, int length) {
    const std::size_t room = mostStrayBytes - std::min(mostStrayBytes, target.size());
    const auto count = std::min(room, static_cast<std::size_t>(length));
    target.insert(target.end(), bytes, bytes + count);
}

} // namespace

LineObserver::LineObserver(const Channel& observedChannel, ExchangeFeed& exchangeFeed, Opened whenOpened)
    : feed(exchangeFeed), tellOpened(std::move(whenOpened)), ends{End(*this, false), End(*this, true)} {
    current.channelId = observedChannel.id;
    // All RTUs of a line have one transmit type.
    const TransmitType type =
        observedChannel.rtus.empty() ? TransmitType::Data : observedChannel.rtus.back().transmitType;
    current.framing = framingOf(observedChannel.type, type);
}

void LineObserver::opened(bool onSecondaryEnd, int result) {
    thread.store(std::this_thread::get_id(), std::memory_order_release);
    current.onSecondary = onSecondaryEnd;
    sign.give(Clock::now());
    tellOpened(onSecondaryEnd, result);
}

void LineObserver::sent(bool onSecondaryEnd, const char* bytes, int length, Clock::time_point begun) {
    endExchange();
    sign.give(begun);
    current.onSecondary = onSecondaryEnd;
    current.sent.assign(bytes, bytes + length);
    current.received.clear();
    current.discarded.swap(discardedBeforeNext);
    discardedBeforeNext.clear();
    current.sentAtSteady = begun;
    current.roundTrip = std::chrono::microseconds(0);
    current.hasLineFailed = false;
    isOpen = true;
    request.hasExchange = true;
}

void LineObserver::received(const char* bytes, int length, Clock::time_point now) {
    sign.give(now);
    if (!isOpen)
        return;
    request.wasHeard = true;
    append(current.received, bytes, length);
    current.roundTrip =
        std::max(std::chrono::duration_cast<std::chrono::microseconds>(now - current.sentAtSteady),
                 std::chrono::microseconds(1));
}

void LineObserver::discarded(const char* bytes, int length) {
    append(discardedBeforeNext, bytes, length);
}

void LineObserver::notSent(const char* bytes, int length) {
    request.unsent.assign(bytes, bytes + std::max(length, 0));
    failed();
}

void LineObserver::failed() {
    request.hasLineFailed = true;
    current.hasLineFailed = isOpen;
}

void LineObserver::endExchange() {
    if (!std::exchange(isOpen, false))
        return;
    if (!current.received.empty())
        request.roundTrips.add(current.roundTrip);
    if (isWriteTelegram(current.framing, current.sent) &&
        answerTo(current.framing, current.sent, current.received) == Answer::Refused)
        request.refusedWrite = lastExchange();
    if (feed.isWatched())
        feed.publish(lastExchange());
}

LineObserver::RequestTrace LineObserver::endRequest() {
    endExchange();
    return std::exchange(request, {});
}

Exchange LineObserver::lastExchange() const {
    Exchange made = current;
    const auto age =
        std::chrono::duration_cast<std::chrono::system_clock::duration>(Clock::now() - made.sentAtSteady);
    made.sentAt = std::chrono::system_clock::now() - age;
    made.station = stationOf(made.framing, made.sent);
    made.answer = answerTo(made.framing, made.sent, made.received);
    return made;
}

} // namespace host
