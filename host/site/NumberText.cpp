#include "NumberText.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace host {

namespace {

// Of a number with up to 100 digits before its point, or the shortest form, which takes 24 characters.
constexpr std::size_t longestText = 128;
// Without an exponent 5e-324 takes more than a thousand.
constexpr std::size_t longestFixed = 1'200;

template <typename Number>
void appendShortest(std::string& text, Number number) {
    char buffer[longestText];
    const auto [end, failure] = std::to_chars(buffer, buffer + sizeof buffer, number);
    text.append(buffer, failure == std::errc() ? end : buffer);
}

bool isExactInteger(double number) {
    constexpr double exactIntegers = 9007199254740992.0; // 2 to the power 53: whole numbers below are exact
    return std::trunc(number) == number && std::fabs(number) < exactIntegers;
}

} // namespace

std::string numberText(double number) {
    std::string text;
    appendNumber(text, number);
    return text;
}

void appendNumber(std::string& text, double number) {
    if (isExactInteger(number))
        appendShortest(text, static_cast<long long>(number));
    else
        appendShortest(text, number);
}

void appendSingle(std::string& text, double number) {
    const double magnitude = std::fabs(number);
    const bool isInRange = magnitude <= static_cast<double>(std::numeric_limits<float>::max()) &&
                           magnitude >= static_cast<double>(std::numeric_limits<float>::denorm_min());
    if (isInRange && !isExactInteger(number))
        appendShortest(text, static_cast<float>(number));
    else
        appendNumber(text, number);
}

void appendFixed(std::string& text, double number, unsigned decimals) {
    char buffer[longestText];
    const auto [end, failure] = std::to_chars(buffer, buffer + sizeof buffer, number,
                                              std::chars_format::fixed, static_cast<int>(decimals));
    if (failure != std::errc()) {
        appendNumber(text, number);
        return;
    }
    const std::string digits(buffer, end);
    const bool isMinusZero = digits.find_first_not_of("-0.") == std::string::npos && digits[0] == '-';
    text += isMinusZero ? digits.substr(1) : digits;
}

unsigned countDecimals(double number) {
    char buffer[longestFixed];
    const auto [end, failure] =
        std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed);
    const std::string digits(buffer, failure == std::errc() ? end : buffer);
    const std::size_t mark = digits.find('.');
    return mark == std::string::npos ? 0 : static_cast<unsigned>(digits.size() - mark - 1);
}

} // namespace host
