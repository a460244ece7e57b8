#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <type_traits>

namespace host {

// The whole number that `text` is, in decimal and within the bounds. Nothing for any other text.
template <typename Integer = unsigned>
std::optional<Integer> parseNumber(const std::string& text, std::common_type_t<Integer> lowest,
                                   std::common_type_t<Integer> highest) {
    Integer number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, failure] = std::from_chars(text.data(), end, number);
    if (failure != std::errc() || rest != end || number < lowest || number > highest)
        return std::nullopt;
    return number;
}

} // namespace host
