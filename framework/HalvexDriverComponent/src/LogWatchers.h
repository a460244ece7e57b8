#pragma once

#include <HalvexDriverComponent/CLogger.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

// Those who see log lines as they come, on the thread that writes them. Any thread.
class LogWatchers {
public:
    // One subscription. Counts the calls in progress by their threads, so that its end can wait for them and
    // a line that the watcher itself writes is not handed back to it.
    struct Subscriber {
        CLogger::Watcher watcher;
        bool seesFrames = false;
        std::shared_ptr<LogWatchers> owner;
        std::mutex mutex;
        std::condition_variable callEnded;
        std::vector<std::thread::id> callers;
        bool ended = false;
    };

    static std::shared_ptr<Subscriber> add(const std::shared_ptr<LogWatchers>& owner,
                                           CLogger::Watcher watcher, bool seesFrames);
    // No call is in progress afterwards, but one that this thread is in itself.
    void remove(const std::shared_ptr<Subscriber>& subscriber);

    bool areThere() const { return watching.load(std::memory_order_acquire) > 0; }
    void notify(const LogLine& line);

    // Whether a watcher or the files want the frame trace: one relaxed load, paid by every frame.
    bool isTraceWanted() const { return traceViewers.load(std::memory_order_relaxed) > 0; }
    void addTraceViewers(int count) { traceViewers.fetch_add(count, std::memory_order_relaxed); }

private:
    static void call(Subscriber& subscriber, const LogLine& line);

    std::mutex mutex;
    std::vector<std::shared_ptr<Subscriber>> subscribers;
    std::atomic<int> watching{0};
    std::atomic<int> traceViewers{0};
};
