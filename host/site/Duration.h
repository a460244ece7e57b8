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

} // namespace host
