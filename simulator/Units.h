#pragma once

#include <chrono>
#include <optional>
#include <string_view>

// Numbers as people write them. Without a value the text is none.
namespace sim {

// A whole number from `lowest` to `highest`, decimal, or hexadecimal with 0x in front.
std::optional<long long> parseInteger(std::string_view text, long long lowest, long long highest);
std::optional<double> parseNumber(std::string_view text);
// A number and its unit: "300ms", "1.5s", "2m", "1h". Not negative, at most a year.
std::optional<std::chrono::milliseconds> parseDuration(std::string_view text);
// "5%" is 0.05. From 0% to 100%.
std::optional<double> parsePercentage(std::string_view text);

// `text` up to the first `separator`, which is taken off `text` with it; all of it when there is none.
std::string_view takeUntil(std::string_view& text, char separator);

} // namespace sim
