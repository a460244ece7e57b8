#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace host {

// Keeps a failure that goes on from filling the screen: the first of its kind is told at once, the ones like
// it at most once a minute with their number, and the end of a failure that was told is told too.
// One thread at a time.
class FailureCollapser {
public:
    using Time = std::chrono::steady_clock::time_point;
    using Source = std::pair<int, int>; // channel, RTU (0: the channel itself)

    // What is to be told, or nothing. Failures of one kind are alike, whatever their texts say.
    std::optional<std::string> failed(const Source& source, int kind, const std::string& text, Time now);
    std::optional<std::string> succeeded(const Source& source, const std::string& who);

    // Whether a failure was told whose end was not.
    bool isFailing(const Source& source) const { return told.count(source) > 0; }

    // What is kept: one for each source and kind.
    std::size_t entries() const { return tellings.size(); }

private:
    struct Telling {
        Time toldAt{};
        unsigned sinceTold = 0;
    };

    std::map<std::pair<Source, int>, Telling> tellings; // by source and kind
    std::set<Source> told;                              // whose failure was told and goes on
};

} // namespace host
