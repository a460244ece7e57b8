#include "Duration.h"

#include <charconv>
#include <cstdint>
#include <limits>

namespace host {

namespace {

std::int64_t unitInMilliseconds(const std::string& unit) {
    if (unit == "ms")
        return 1;
    if (unit == "s")
        return 1'000;
    if (unit == "m")
        return 60'000;
    if (unit == "h")
        return 3'600'000;
    return 0;
}

} // namespace

std::optional<std::chrono::milliseconds> parseDuration(const std::string& text) {
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, failure] = std::from_chars(text.data(), end, number);
    if (failure != std::errc())
        return std::nullopt;
    const std::int64_t unit = unitInMilliseconds(std::string(rest, end));
    const std::int64_t total = unit * number;
    if (unit == 0 || total > std::numeric_limits<std::int32_t>::max())
        return std::nullopt;
    return std::chrono::milliseconds(total);
}

std::string durationFault(const std::string& text) {
    return parseDuration(text).value_or(std::chrono::milliseconds(0)).count() > 0
               ? ""
               : "\"" + text + "\" is no time above 0; write a number and its unit: 500ms, 10s, 2m, 1h";
}

} // namespace host
