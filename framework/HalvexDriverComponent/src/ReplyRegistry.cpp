#include "ReplyRegistry.h"

#include "ReplyState.h"

#include <utility>
#include <vector>

ReplyRegistry::ReplyRegistry() : shared(std::make_shared<Shared>()) {}

ReplyRegistry::~ReplyRegistry() {
    std::vector<CReply*> abandoned;
    std::vector<CReply::State::Notice> notices;
    {
        const std::lock_guard<std::mutex> lock(shared->mutex);
        const std::vector<CReply*> replies(shared->replies.begin(), shared->replies.end());
        for (CReply* reply : replies) {
            CReply::State& state = *reply->state;
            if (auto notice = state.complete(Halvex::DriverErrorResult::ChannelError))
                notices.push_back(std::move(notice));
            state.driverReferences = 0;
            if (state.takeOutIfUnused(reply))
                abandoned.push_back(reply);
        }
    }
    for (CReply* reply : abandoned)
        delete reply;
    for (const CReply::State::Notice& notice : notices)
        notice(Halvex::DriverErrorResult::ChannelError);
}
