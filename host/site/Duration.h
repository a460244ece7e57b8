#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace host {

// "500ms", "1s", "2m", "24h": a whole number and its unit. Nothing for any other text and for what does not
// fit into 31 bits of milliseconds (24 days), which is as far as the drivers' clocks count.
std::optional<std::chrono::milliseconds> parseDuration(const std::string& text);
// Why `text` is no duration above 0; empty when it is one.
std::string durationFault(const std::string& text);

// The same and whole days, "400d", for what no driver waits for: up to 1,000,000 days.
std::optional<std::chrono::milliseconds> parseTimeSpan(const std::string& text);
// Why `text` is no such time above 0; empty when it is one.
std::string timeSpanFault(const std::string& text);

} // namespace host
