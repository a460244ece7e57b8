#pragma once

#include <memory>
#include <mutex>
#include <unordered_set>

class CReply;

// The replies made for one channel that still exist. Owned by the channel: when it goes, whoever still waits
// for a reply gets ChannelError, and replies that nobody waits for any more are freed, whatever a driver
// took over. Any thread.
class ReplyRegistry {
public:
    // What replies share with their registry; lives as long as the last of them. One lock for all replies of
    // a channel lets the registry end them while their waiting sides give up.
    struct Shared {
        std::mutex mutex;
        std::unordered_set<CReply*> replies;
    };

    ReplyRegistry();
    ReplyRegistry(const ReplyRegistry&) = delete;
    ReplyRegistry& operator=(const ReplyRegistry&) = delete;
    ~ReplyRegistry();

    const std::shared_ptr<Shared>& share() const { return shared; }

private:
    const std::shared_ptr<Shared> shared;
};
