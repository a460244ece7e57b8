#include "LogWatchers.h"

#include <algorithm>
#include <utility>

std::shared_ptr<LogWatchers::Subscriber> LogWatchers::add(const std::shared_ptr<LogWatchers>& owner,
                                                          CLogger::Watcher watcher, bool seesFrames) {
    auto subscriber = std::make_shared<Subscriber>();
    subscriber->watcher = std::move(watcher);
    subscriber->seesFrames = seesFrames;
    subscriber->owner = owner;
    const std::lock_guard<std::mutex> lock(owner->mutex);
    owner->subscribers.push_back(subscriber);
    ++owner->watching;
    owner->addTraceViewers(seesFrames ? 1 : 0);
    return subscriber;
}

void LogWatchers::remove(const std::shared_ptr<Subscriber>& subscriber) {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        subscribers.erase(std::remove(subscribers.begin(), subscribers.end(), subscriber), subscribers.end());
        --watching;
        addTraceViewers(subscriber->seesFrames ? -1 : 0);
    }
    std::unique_lock<std::mutex> lock(subscriber->mutex);
    subscriber->ended = true;
    const auto self = std::this_thread::get_id();
    subscriber->callEnded.wait(lock, [&] {
        return std::all_of(subscriber->callers.begin(), subscriber->callers.end(),
                           [self](std::thread::id caller) { return caller == self; });
    });
}

void LogWatchers::notify(const LogLine& line) {
    std::vector<std::shared_ptr<Subscriber>> current;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        current = subscribers;
    }
    for (const auto& subscriber : current)
        if (line.route != LogLine::Route::Packet || subscriber->seesFrames)
            call(*subscriber, line);
}

void LogWatchers::call(Subscriber& subscriber, const LogLine& line) {
    const auto self = std::this_thread::get_id();
    auto& callers = subscriber.callers;
    {
        const std::lock_guard<std::mutex> lock(subscriber.mutex);
        if (subscriber.ended || std::find(callers.begin(), callers.end(), self) != callers.end())
            return;
        callers.push_back(self);
    }
    try {
        subscriber.watcher(line);
    } catch (...) {
        // A watcher's trouble is not the writer's, which has a controller to serve.
    }
    const std::lock_guard<std::mutex> lock(subscriber.mutex);
    callers.erase(std::find(callers.begin(), callers.end(), self));
    subscriber.callEnded.notify_all();
}
