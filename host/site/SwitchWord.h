#pragma once

#include <optional>
#include <string>

namespace host {

// What "on", "off", "true" and "false" say, in upper or lower case. Nothing for any other text.
std::optional<bool> parseSwitchWord(const std::string& text);

} // namespace host
