#include "ReplyRegistry.h"

#include "ReplyState.h"

#include <vector>

ReplyRegistry::ReplyRegistry() : shared(std::make_shared<Shared>()) {}

ReplyRegistry::~ReplyRegistry() {
    std::vector<CReply*> abandoned;
    {
        const std::lock_guard<std::mutex> lock(shared->mutex);
        const std::vector<CReply*> replies(shared->replies.begin(), shared->replies.end());
        for (CReply* reply : replies) {
            CReply::State& state = *reply->state;
            state.complete(Halvex::DriverErrorResult::ChannelError);
            state.driverReferences = 0;
            if (state.takeOutIfUnused(reply))
                abandoned.push_back(reply);
        }
    }
    for (CReply* reply : abandoned)
        delete reply;
}
