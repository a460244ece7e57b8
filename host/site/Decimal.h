#pragma once

#include <optional>
#include <string>

namespace host {

// The number that `text` is: "-12", "0.1", "1.5e3". Nothing for any other text. What no double holds is the
// largest one, or the smallest above 0, of its sign.
std::optional<double> parseDecimal(const std::string& text);

} // namespace host
