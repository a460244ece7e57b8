#pragma once

#include "Layout.h"

#include <chrono>
#include <deque>
#include <map>
#include <optional>
#include <string>

namespace host {

// Tells a command that was sent twice, as MQTT and its bridges may do, by its key. Time is told. Pure.
class RecentCommands {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::size_t mostKept = 10'000;
    static constexpr std::chrono::minutes memory{10};

    struct Known {
        Time taken{};
        std::optional<CommandResult> result; // nothing: it is under way
    };

    // Null for a key that did not come before; then it has come now.
    const Known* findOrTake(const std::string& key, Time now);
    void noteResult(const std::string& key, const CommandResult& result);

private:
    std::map<std::string, Known> known;
    std::deque<std::string> order; // the oldest first
};

} // namespace host
