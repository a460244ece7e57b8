#pragma once

#include <algorithm>
#include <chrono>

// How long to wait so that a clock of whole milliseconds, started before the wait, shows more than
// `timeoutMs` after it. Such a clock may be a whole millisecond behind; the second one and the thousandth
// cover a wall clock that is being slewed meanwhile (time daemons keep below 500 millionths).
inline std::chrono::milliseconds longerThan(int timeoutMs) {
    const std::chrono::milliseconds timeout(std::max(timeoutMs, 0));
    return timeout + std::chrono::milliseconds(2) + timeout / 1000;
}
