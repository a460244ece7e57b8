#pragma once

#include "ReplyRegistry.h"

#include <HalvexDriverComponent/CReply.h>

#include <condition_variable>
#include <functional>
#include <memory>
#include <utility>

// Where a reply stands. All but the pointer is guarded by the shared mutex.
struct CReply::State {
    explicit State(std::shared_ptr<ReplyRegistry::Shared> sharedWithChannel)
        : shared(std::move(sharedWithChannel)) {}

    using Notice = std::function<void(Halvex::DriverErrorResult)>;

    // What is to be called with `ended` once the lock is given up: nothing unless notify() asked for it.
    [[nodiscard]] Notice complete(Halvex::DriverErrorResult ended) {
        if (completed)
            return {};
        completed = true;
        result = ended;
        // Under the lock: the waiting side may free the reply as soon as it has the lock.
        answered.notify_all();
        if (notice)
            waitingSideGone = true;
        return std::exchange(notice, Notice());
    }

    // True when both sides have ended their use: then the caller, and nobody else, deletes `reply` once it
    // has given up the lock.
    bool takeOutIfUnused(CReply* reply) {
        if (!waitingSideGone || driverReferences > 0)
            return false;
        shared->replies.erase(reply);
        return true;
    }

    // Ends the waiting side's use of `reply`, which may be gone afterwards. Gives up the lock.
    void endWaiting(CReply* reply, std::unique_lock<std::mutex>& lock) {
        waitingSideGone = true;
        const bool unused = takeOutIfUnused(reply);
        lock.unlock();
        if (unused)
            delete reply;
    }

    const std::shared_ptr<ReplyRegistry::Shared> shared;
    std::condition_variable answered;
    Notice notice;
    int driverReferences = 0;
    bool waitingSideGone = false;
    bool completed = false;
    Halvex::DriverErrorResult result = Halvex::DriverErrorResult::Success;
};
