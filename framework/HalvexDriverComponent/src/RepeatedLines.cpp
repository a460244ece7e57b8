#include "RepeatedLines.h"

#include <utility>

RepeatedLines::Verdict RepeatedLines::examine(int source, std::string_view line, Clock::time_point now) {
    const auto [found, isNew] = lastOf.try_emplace(source);
    Last& last = found->second;
    Verdict verdict;
    if (isNew || last.line != line) {
        verdict.report = takeReport(last, now);
        last.line = line;
        last.reported = now;
        return verdict;
    }
    verdict.repeated = true;
    ++last.repeats;
    if (now - last.reported >= reportInterval)
        verdict.report = takeReport(last, now);
    return verdict;
}

std::map<int, std::string> RepeatedLines::takeReports(Clock::time_point now) {
    std::map<int, std::string> reports;
    for (auto& [source, last] : lastOf)
        if (auto report = takeReport(last, now))
            reports.emplace(source, std::move(*report));
    return reports;
}

std::optional<std::string> RepeatedLines::takeReport(Last& last, Clock::time_point now) {
    const auto repeats = std::exchange(last.repeats, 0);
    last.reported = now;
    if (repeats == 0)
        return std::nullopt;
    return last.line + " (repeated " + std::to_string(repeats) + (repeats == 1 ? " time)" : " times)");
}
