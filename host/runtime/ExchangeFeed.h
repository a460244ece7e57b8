#pragma once

#include "telegram/Exchange.h"

#include <atomic>
#include <functional>
#include <memory>
#include <shared_mutex>
#include <vector>

namespace host {

// Hands each exchange of the lines to all who look. Any thread.
class ExchangeFeed {
public:
    // Called on the line's thread, which it holds up: it must return soon and neither watch nor end a watch.
    using Watcher = std::function<void(const Exchange&)>;

    // Its watcher is called until it is destroyed, which waits for a call in progress. The feed outlives it.
    class Watch {
    public:
        Watch(ExchangeFeed& watchedFeed, Watcher exchangeWatcher);
        Watch(const Watch&) = delete;
        Watch& operator=(const Watch&) = delete;
        ~Watch();

    private:
        friend class ExchangeFeed;
        ExchangeFeed& feed;
        const Watcher watcher;
    };

    [[nodiscard]] std::unique_ptr<Watch> watch(Watcher watcher);

    // Whether an exchange is worth being made.
    bool isWatched() const { return count.load(std::memory_order_acquire) > 0; }
    void publish(const Exchange& exchange);

private:
    std::shared_mutex mutex; // guards the list; shared while watchers are called
    std::vector<Watch*> watches;
    std::atomic<std::size_t> count{0};
};

} // namespace host
