#include "LateTimer.h"

#include <algorithm>

LateTimer::LateTimer() : thread([this] { run(); }) {}

LateTimer::~LateTimer() {
    isOver = true;
    thread.join();
}

void LateTimer::run() {
    constexpr std::chrono::milliseconds period{10};
    while (!isOver) {
        const Clock::time_point due = Clock::now() + period;
        std::this_thread::sleep_until(due);
        worst = std::max(worst.load(), (Clock::now() - due).count());
    }
}
