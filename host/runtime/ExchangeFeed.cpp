#include "ExchangeFeed.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace host {

ExchangeFeed::Watch::Watch(ExchangeFeed& watchedFeed, Watcher exchangeWatcher)
    : feed(watchedFeed), watcher(std::move(exchangeWatcher)) {
    const std::lock_guard<std::shared_mutex> lock(feed.mutex);
    feed.watches.push_back(this);
    feed.count.store(feed.watches.size(), std::memory_order_release);
}

ExchangeFeed::Watch::~Watch() {
    const std::lock_guard<std::shared_mutex> lock(feed.mutex);
    feed.watches.erase(std::remove(feed.watches.begin(), feed.watches.end(), this), feed.watches.end());
    feed.count.store(feed.watches.size(), std::memory_order_release);
}

std::unique_ptr<ExchangeFeed::Watch> ExchangeFeed::watch(Watcher watcher) {
    return std::make_unique<Watch>(*this, std::move(watcher));
}

void ExchangeFeed::publish(const Exchange& exchange) {
    const std::shared_lock<std::shared_mutex> lock(mutex);
    for (const Watch* const watch : watches)
        watch->watcher(exchange);
}

} // namespace host
