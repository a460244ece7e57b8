#include "ExchangeQueue.h"

#include <utility>

namespace host {

void ExchangeQueue::add(const Exchange& exchange) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (waiting.exchanges.size() < mostWaiting)
        waiting.exchanges.push_back(exchange);
    else
        ++waiting.lost;
}

ExchangeQueue::Taken ExchangeQueue::take() {
    const std::lock_guard<std::mutex> lock(mutex);
    return std::exchange(waiting, {});
}

} // namespace host
