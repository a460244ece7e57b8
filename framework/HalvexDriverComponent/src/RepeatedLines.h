#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

// Finds the lines of one log file that repeat the line before, so that they are written as one line with
// their count. "Before" is meant per source (an RTU, or its frame trace): three RTUs that answer in turn
// repeat themselves, though no two neighbouring lines are equal. One thread at a time.
class RepeatedLines {
public:
    using Clock = std::chrono::steady_clock;

    // A line that is repeated for hours shows its count this often.
    static constexpr std::chrono::seconds reportInterval{60};

    struct Verdict {
        std::optional<std::string> report; // to be written first: the line that was repeated, and how often
        bool repeated = false;             // the new line is counted, not written
    };
    Verdict examine(int source, std::string_view line, Clock::time_point now);

    // What is counted and not yet reported, for each source that has something.
    std::map<int, std::string> takeReports(Clock::time_point now);

private:
    struct Last {
        std::string line;
        std::uint64_t repeats = 0;
        Clock::time_point reported;
    };
    static std::optional<std::string> takeReport(Last& last, Clock::time_point now);

    std::map<int, Last> lastOf;
};
