#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CReply.h>

#include "ReplyState.h"

#include <algorithm>
#include <atomic>
#include <chrono>

namespace {

std::atomic<int> liveReplies{0};

std::shared_ptr<ReplyRegistry::Shared> sharedOf(CChannel* channel) {
    return channel ? channel->GetReplyRegistry().share() : std::make_shared<ReplyRegistry::Shared>();
}

} // namespace

CReply::CReply(CChannel* channel) : state(new State(sharedOf(channel))) {
    ++liveReplies;
    const std::lock_guard<std::mutex> lock(state->shared->mutex);
    state->shared->replies.insert(this);
}

CReply::~CReply() {
    {
        // A copy: the lock must outlive the state, which may hold the last pointer to it.
        const auto shared = state->shared;
        const std::lock_guard<std::mutex> lock(shared->mutex);
        shared->replies.erase(this);
        delete state;
    }
    --liveReplies;
}

void CReply::addRefer() {
    const std::lock_guard<std::mutex> lock(state->shared->mutex);
    ++state->driverReferences;
}

bool CReply::replyed() const {
    const std::lock_guard<std::mutex> lock(state->shared->mutex);
    return state->waitingSideGone;
}

void CReply::setRefer(Halvex::DriverErrorResult result) {
    const auto shared = state->shared;
    std::unique_lock<std::mutex> lock(shared->mutex);
    const Halvex::DriverErrorResult ended =
        result == Halvex::DriverErrorResult::Success ? errorResult : result;
    const State::Notice notice = state->complete(ended);
    state->driverReferences = std::max(0, state->driverReferences - 1);
    const bool unused = state->takeOutIfUnused(this);
    lock.unlock();
    if (unused)
        delete this;
    if (notice)
        notice(ended);
}

std::optional<Halvex::DriverErrorResult> CReply::wait(int timeoutMs) {
    const auto shared = state->shared;
    std::unique_lock<std::mutex> lock(shared->mutex);
    std::optional<Halvex::DriverErrorResult> result;
    if (state->answered.wait_for(lock, std::chrono::milliseconds(std::max(0, timeoutMs)),
                                 [this] { return state->completed; }))
        result = state->result;
    state->endWaiting(this, lock);
    return result;
}

void CReply::notify(std::function<void(Halvex::DriverErrorResult)> notice) {
    const auto shared = state->shared;
    std::unique_lock<std::mutex> lock(shared->mutex);
    if (!state->completed) {
        state->notice = std::move(notice);
        return;
    }
    const Halvex::DriverErrorResult result = state->result;
    state->endWaiting(this, lock);
    notice(result);
}

void CReply::release() {
    const auto shared = state->shared;
    std::unique_lock<std::mutex> lock(shared->mutex);
    state->endWaiting(this, lock);
}

int CReply::liveCount() {
    return liveReplies.load();
}
