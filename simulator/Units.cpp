#include "Units.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace sim {

namespace {

// "min" is how "m" was written before.
constexpr std::array<std::pair<std::string_view, double>, 5> unitsInMilliseconds = {
    {{"ms", 1.0}, {"s", 1000.0}, {"m", 60000.0}, {"min", 60000.0}, {"h", 3600000.0}}};
constexpr double yearInMilliseconds = 366.0 * 24.0 * 3600000.0;

// All of `text` must be the number.
template <typename Number, typename... Format>
std::optional<Number> convert(std::string_view text, Format... format) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, format...);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

} // namespace

std::optional<long long> parseInteger(std::string_view text, long long lowest, long long highest) {
    const bool hexadecimal = text.substr(0, 2) == "0x";
    const auto number = hexadecimal ? convert<long long>(text.substr(2), 16) : convert<long long>(text, 10);
    if (!number || *number < lowest || *number > highest)
        return std::nullopt;
    return number;
}

std::optional<double> parseNumber(std::string_view text) {
    return convert<double>(text);
}

std::optional<std::chrono::milliseconds> parseDuration(std::string_view text) {
    const std::size_t unitStart = text.find_first_not_of("0123456789.");
    if (unitStart == std::string_view::npos)
        return std::nullopt;
    const auto number = parseNumber(text.substr(0, unitStart));
    if (!number)
        return std::nullopt;
    for (const auto& [unit, milliseconds] : unitsInMilliseconds) {
        if (text.substr(unitStart) == unit && *number * milliseconds <= yearInMilliseconds)
            return std::chrono::milliseconds(std::llround(*number * milliseconds));
    }
    return std::nullopt;
}

std::optional<double> parsePercentage(std::string_view text) {
    if (text.empty() || text.back() != '%')
        return std::nullopt;
    const auto number = parseNumber(text.substr(0, text.size() - 1));
    if (!number || !(*number >= 0.0 && *number <= 100.0))
        return std::nullopt;
    return *number / 100.0;
}

std::string_view takeUntil(std::string_view& text, char separator) {
    const std::size_t position = text.find(separator);
    const std::string_view part = text.substr(0, position);
    text = position == std::string_view::npos ? std::string_view() : text.substr(position + 1);
    return part;
}

} // namespace sim
