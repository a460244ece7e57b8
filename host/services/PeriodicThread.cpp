#include "PeriodicThread.h"

#include "runtime/StartThread.h"

#include <utility>

namespace host {

PeriodicThread::~PeriodicThread() {
    stop();
}

void PeriodicThread::start(const std::string& purpose, std::chrono::milliseconds pause,
                           std::function<void()> turn) {
    thread = startThread(purpose, [this, pause, called = std::move(turn)] { run(pause, called); });
}

void PeriodicThread::run(std::chrono::milliseconds pause, const std::function<void()>& turn) {
    std::unique_lock<std::mutex> lock(mutex);
    while (!isStopping) {
        lock.unlock();
        turn();
        lock.lock();
        stopped.wait_for(lock, pause, [this] { return isStopping; });
    }
}

void PeriodicThread::stop() {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isStopping = true;
    }
    stopped.notify_all();
    if (thread.joinable())
        thread.join();
}

} // namespace host
