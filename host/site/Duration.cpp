#include "Duration.h"

#include <charconv>
#include <cstdint>
#include <limits>

namespace host {

namespace {

constexpr std::int64_t day = 86'400'000;
constexpr std::int64_t longestSpan = 1'000'000 * day; // some 2,700 years; sums of times stay within 64 bits

std::int64_t unitInMilliseconds(const std::string& unit) {
    if (unit == "ms")
        return 1;
    if (unit == "s")
        return 1'000;
    if (unit == "m")
        return 60'000;
    if (unit == "h")
        return 3'600'000;
    if (unit == "d")
        return day;
    return 0;
}

// A whole number and its unit, which is at most `longestUnit`.
std::optional<std::chrono::milliseconds> parse(const std::string& text, std::int64_t longestUnit,
                                               std::int64_t longest) {
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, failure] = std::from_chars(text.data(), end, number);
    if (failure != std::errc())
        return std::nullopt;
    const std::int64_t unit = unitInMilliseconds(std::string(rest, end));
    const std::int64_t total = unit * number;
    if (unit == 0 || unit > longestUnit || total > longest)
        return std::nullopt;
    return std::chrono::milliseconds(total);
}

bool isAboveZero(const std::optional<std::chrono::milliseconds>& time) {
    return time && time->count() > 0;
}

} // namespace

std::optional<std::chrono::milliseconds> parseDuration(const std::string& text) {
    return parse(text, unitInMilliseconds("h"), std::numeric_limits<std::int32_t>::max());
}

std::string durationFault(const std::string& text) {
    return isAboveZero(parseDuration(text))
               ? ""
               : "\"" + text + "\" is no time above 0; write a number and its unit: 500ms, 10s, 2m, 1h";
}

std::optional<std::chrono::milliseconds> parseTimeSpan(const std::string& text) {
    return parse(text, day, longestSpan);
}

std::string timeSpanFault(const std::string& text) {
    return isAboveZero(parseTimeSpan(text))
               ? ""
               : "\"" + text + "\" is no time above 0; write a number and its unit: 10s, 5m, 1h, 30d";
}

} // namespace host
