#include <HalvexDriverLink/CLink.h>

#include "TimeOut.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

// Rounded up: a wait that ends early would have to be repeated.
int wholeMilliseconds(std::chrono::steady_clock::duration duration) {
    const auto count = std::chrono::ceil<milliseconds>(duration).count();
    return static_cast<int>(std::clamp<decltype(count)>(count, 0, std::numeric_limits<int>::max()));
}

void add(std::atomic<std::uint64_t>& figure, int amount) {
    if (amount > 0)
        figure.fetch_add(static_cast<std::uint64_t>(amount), std::memory_order_relaxed);
}

} // namespace

LinkObserver::~LinkObserver() = default;

CLink::~CLink() = default;

int CLink::rxMessage(char* buffer, int wanted, int& received, int timeoutMs, int silenceMs) {
    received = 0;
    const Clock::time_point timeOut = Clock::now() + longerThan(timeoutMs);
    Clock::time_point patience = timeOut;
    while (received < wanted && !isInterrupted()) {
        // Also without any time left to wait: bytes that came in time count, however late this thread runs.
        const int wait = wholeMilliseconds(patience - Clock::now());
        int count = 0;
        if (receive(buffer + received, wanted - received, count, wait) != 0)
            return -1;
        received += count;
        const Clock::time_point now = Clock::now();
        if (count > 0)
            patience = std::min(timeOut, now + milliseconds(std::max(silenceMs, 0)));
        else if (now >= patience)
            break;
    }
    return 0;
}

void CLink::interrupt() {
    interrupted.store(true, std::memory_order_release);
    wake();
}

LinkFigures CLink::figures() const {
    LinkFigures figures;
    figures.telegramsSent = telegramsSent.load(std::memory_order_relaxed);
    figures.bytesSent = bytesSent.load(std::memory_order_relaxed);
    figures.bytesReceived = bytesReceived.load(std::memory_order_relaxed);
    figures.bytesDiscarded = bytesDiscarded.load(std::memory_order_relaxed);
    figures.opens = opens.load(std::memory_order_relaxed);
    return figures;
}

RoundTrips CLink::takeRoundTrips() {
    closeRoundTrip();
    return std::exchange(roundTrips, {});
}

int CLink::noteOpened(int result) {
    if (result == 0)
        add(opens, 1);
    if (observer != nullptr)
        observer->linkOpened(result);
    return result;
}

int CLink::noteSendEnded(int result, const char* bytes, int length) {
    if (result != 0 && observer != nullptr)
        observer->sendFailed(bytes, length);
    return result;
}

int CLink::noteReceiveEnded(int result) {
    if (result != 0 && observer != nullptr)
        observer->receiveFailed();
    return result;
}

void CLink::noteSent(const char* bytes, int length, Clock::time_point begun) {
    closeRoundTrip();
    add(telegramsSent, 1);
    add(bytesSent, length);
    sentAt = begun;
    awaitingAnswer = true;
    if (observer != nullptr)
        observer->telegramSent(bytes, length, begun);
}

void CLink::noteReceived(const char* bytes, int length) {
    add(bytesReceived, length);
    if (length <= 0)
        return;
    const Clock::time_point now = Clock::now();
    if (observer != nullptr)
        observer->bytesReceived(bytes, length, now);
    // Never 0, which stands for "no answer yet".
    if (awaitingAnswer)
        currentRoundTrip = std::max(std::chrono::duration_cast<microseconds>(now - sentAt), microseconds(1));
}

void CLink::noteDiscarded(const char* bytes, int length) {
    add(bytesDiscarded, length);
    if (length > 0 && observer != nullptr)
        observer->bytesDiscarded(bytes, length);
}

void CLink::closeRoundTrip() {
    if (awaitingAnswer && currentRoundTrip.count() > 0) {
        ++roundTrips.count;
        roundTrips.last = currentRoundTrip;
        roundTrips.slowest = std::max(roundTrips.slowest, currentRoundTrip);
    }
    awaitingAnswer = false;
    currentRoundTrip = microseconds(0);
}
