#include "ByteSize.h"

#include <charconv>
#include <limits>

namespace host {

namespace {

std::uint64_t unitInBytes(const std::string& unit) {
    if (unit == "B")
        return 1;
    if (unit == "kB")
        return 1'000;
    if (unit == "MB")
        return 1'000'000;
    if (unit == "GB")
        return 1'000'000'000;
    return 0;
}

} // namespace

std::optional<std::uint64_t> parseByteSize(const std::string& text) {
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, failure] = std::from_chars(text.data(), end, number);
    if (failure != std::errc())
        return std::nullopt;
    const std::uint64_t unit = unitInBytes(std::string(rest, end));
    if (unit == 0 || number > largest / unit)
        return std::nullopt;
    return number * unit;
}

std::string byteSizeFault(const std::string& text) {
    return parseByteSize(text).value_or(0) > 0
               ? ""
               : "\"" + text + "\" is no size above 0; write a number and its unit: 512kB, 10MB, 1GB";
}

} // namespace host
