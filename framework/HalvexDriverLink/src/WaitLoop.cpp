#include "WaitLoop.h"

#include <utility>

WaitLoop::WaitLoop(std::function<bool()> isInterrupted) : interrupted(std::move(isInterrupted)) {}

void WaitLoop::prepare() {
    const std::lock_guard lock(making);
    if (ioContext)
        return;
    ioContext = std::make_unique<asio::io_context>(1); // one thread at a time runs it
    work.emplace(ioContext->get_executor());
}

void WaitLoop::wake() {
    const std::lock_guard lock(making);
    if (ioContext)
        ioContext->stop();
}

WaitLoop::Abandonment::Abandonment(WaitLoop& loop) : waitLoop(loop) {
    waitLoop.abandonments.fetch_add(1);
    waitLoop.wake();
}

WaitLoop::Abandonment::~Abandonment() {
    waitLoop.abandonments.fetch_sub(1);
}

void WaitLoop::sleepUntil(Clock::time_point deadline) {
    const bool never = false;
    waitUntil(deadline, never);
}

bool WaitLoop::mayWait() const {
    return abandonments.load() == 0 && !interrupted();
}

void WaitLoop::waitUntil(Clock::time_point deadline, const bool& finished) {
    // restart() comes before the question: a wake() before it has set its flag already, a wake() after it
    // stops the run. A wake() meant for an earlier wait only costs one more turn.
    bool isTimeLeft = true;
    while (isTimeLeft && !finished) {
        ioContext->restart();
        if (!mayWait())
            break;
        isTimeLeft = ioContext->run_one_until(deadline) > 0 || Clock::now() < deadline;
    }
    // What is there by now counts, however late this thread came to look.
    if (finished)
        return;
    ioContext->restart();
    ioContext->poll_one();
}

void WaitLoop::runOut(const bool& finished) {
    while (!finished) {
        ioContext->restart();
        ioContext->run_one();
    }
}
