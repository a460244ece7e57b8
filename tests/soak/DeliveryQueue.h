#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <chrono>
#include <functional>
#include <map>
#include <utility>

namespace soak {

// What a relay has still to send, each item at its time; those of the same time in the order in which they
// came. On the relay's thread alone.
template <typename Item>
class DeliveryQueue {
public:
    using Clock = std::chrono::steady_clock;
    using Send = std::function<void(const Item&)>;

    DeliveryQueue(asio::io_context& context, Send sendItem) : timer(context), send(std::move(sendItem)) {}

    void add(Clock::time_point time, Item item) { waiting.emplace(time, std::move(item)); }
    bool isEmpty() const { return waiting.empty(); }

    // And the rest when its time has come.
    void sendDue() {
        const Clock::time_point now = Clock::now();
        while (!waiting.empty() && waiting.begin()->first <= now) {
            send(waiting.begin()->second);
            waiting.erase(waiting.begin());
        }
        if (waiting.empty())
            return;
        timer.expires_at(waiting.begin()->first);
        timer.async_wait([this](const std::error_code& error) {
            if (!error)
                sendDue();
        });
    }

private:
    std::multimap<Clock::time_point, Item> waiting;
    asio::steady_timer timer;
    const Send send;
};

} // namespace soak
