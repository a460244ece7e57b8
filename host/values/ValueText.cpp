#include "ValueText.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace host {

namespace {

template <typename Number>
void appendShortest(std::string& text, Number number) {
    char buffer[64]; // the longest double takes 24
    const auto [end, failure] = std::to_chars(buffer, buffer + sizeof buffer, number);
    text.append(buffer, failure == std::errc() ? end : buffer);
}

} // namespace

void appendValue(std::string& text, const Point& point, double value) {
    constexpr double exactIntegers = 9007199254740992.0; // 2 to the power 53: whole numbers below are exact
    if (std::trunc(value) == value && std::fabs(value) < exactIntegers)
        appendShortest(text, static_cast<long long>(value));
    else if (point.isFloat) // its register holds no more than single precision
        appendShortest(text, static_cast<float>(value));
    else
        appendShortest(text, value);
}

std::string valueText(const Point& point, double value) {
    std::string text;
    appendValue(text, point, value);
    return text;
}

double heldValue(const Point& point, double value) {
    if (!point.isFloat)
        return value;
    std::string text;
    appendShortest(text, static_cast<float>(value));
    double held = 0;
    std::from_chars(text.data(), text.data() + text.size(), held);
    return held;
}

const char* toText(PointQuality quality) {
    switch (quality) {
    case PointQuality::Good:
        return "good";
    case PointQuality::Bad:
        return "bad";
    case PointQuality::Refused:
        return "refused";
    case PointQuality::NeverRead:
        break;
    }
    return "never read";
}

std::string millisecondsText(std::chrono::microseconds duration) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f ms", static_cast<double>(duration.count()) / 1000);
    return text;
}

} // namespace host
