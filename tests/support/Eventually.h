#pragma once

#include <QElapsedTimer>
#include <QThread>

#include <functional>

// Whether the condition holds at last. Only a failure waits for all of `patienceMs`.
inline bool eventually(const std::function<bool()>& condition, int patienceMs = 60'000) {
    QElapsedTimer elapsed;
    elapsed.start();
    while (!condition()) {
        if (elapsed.elapsed() > patienceMs)
            return false;
        QThread::msleep(20);
    }
    return true;
}
