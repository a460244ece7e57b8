#include "Decimal.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace host {

namespace {

// Whether a number that no double holds is too close to 0, not too large.
bool isTiny(const std::string& text) {
    const std::size_t exponent = std::min(text.find_first_of("eE"), text.size());
    if (exponent < text.size())
        return text.compare(exponent + 1, 1, "-") == 0;
    return text.substr(0, text.find('.')).find_first_of("123456789") == std::string::npos;
}

} // namespace

std::optional<double> parseDecimal(const std::string& text) {
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, failure] = std::from_chars(text.data(), end, value);
    if (rest != end || failure == std::errc::invalid_argument || !std::isfinite(value))
        return std::nullopt;
    if (failure != std::errc::result_out_of_range)
        return value;
    const double size =
        isTiny(text) ? std::numeric_limits<double>::min() : std::numeric_limits<double>::max();
    return text[0] == '-' ? -size : size;
}

} // namespace host
