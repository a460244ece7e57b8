#pragma once

#include <QString>

#include <algorithm>
#include <deque>
#include <optional>
#include <utility>

// A request as far as the engine tells requests apart, and what is to be seen when it ends.
struct ModelRequest {
    int rtu;
    QString label;
    int telegrams;
    int points = 0;      // whose values a good end publishes
    int reply = noReply; // its place in the list of replies

    static constexpr int noReply = -1;

    bool isLike(const ModelRequest& other) const {
        return rtu == other.rtu && telegrams == other.telegrams && label == other.label;
    }
};

// Which request the engine has to carry out next: polls behind the others unless one like it waits, commands
// in front in the place of all like it, and releases of pulses, which turn into polls when they are due.
class ModelTable {
public:
    void queue(const ModelRequest& request) {
        if (!isLikeOneWaiting(request))
            waiting.push_back(request);
    }

    void submit(const ModelRequest& request) {
        waiting.erase(std::remove_if(waiting.begin(), waiting.end(),
                                     [&](const ModelRequest& other) { return other.isLike(request); }),
                      waiting.end());
        waiting.push_front(request);
    }

    void delay(const ModelRequest& request, std::int64_t untilMs) { delayed.emplace_back(untilMs, request); }

    void queueDue(std::int64_t nowMs) {
        for (const auto& [untilMs, request] : delayed)
            if (untilMs <= nowMs)
                queue(request);
        delayed.erase(std::remove_if(delayed.begin(), delayed.end(),
                                     [=](const auto& entry) { return entry.first <= nowMs; }),
                      delayed.end());
    }

    std::optional<ModelRequest> takeNext() {
        if (waiting.empty())
            return std::nullopt;
        const ModelRequest next = waiting.front();
        waiting.pop_front();
        return next;
    }

    int size() const { return static_cast<int>(waiting.size() + delayed.size()); }

private:
    bool isLikeOneWaiting(const ModelRequest& request) const {
        return std::any_of(waiting.cbegin(), waiting.cend(),
                           [&](const ModelRequest& other) { return other.isLike(request); });
    }

    std::deque<ModelRequest> waiting;
    std::deque<std::pair<std::int64_t, ModelRequest>> delayed;
};
