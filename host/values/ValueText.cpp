#include "ValueText.h"

#include <QDateTime>

#include <charconv>
#include <cmath>
#include <cstdio>

namespace host {

namespace {

template <typename Number>
std::string shortestText(Number number) {
    char buffer[64]; // the longest double takes 24
    const auto [end, failure] = std::to_chars(buffer, buffer + sizeof buffer, number);
    return failure == std::errc() ? std::string(buffer, end) : std::string("?");
}

} // namespace

std::string valueText(const Point& point, double value) {
    constexpr double exactIntegers = 9007199254740992.0; // 2 to the power 53: whole numbers below are exact
    if (std::trunc(value) == value && std::fabs(value) < exactIntegers)
        return std::to_string(static_cast<long long>(value));
    // A float register holds no more than single precision.
    return point.isFloat ? shortestText(static_cast<float>(value)) : shortestText(value);
}

const char* toText(PointQuality quality) {
    switch (quality) {
    case PointQuality::Good:
        return "good";
    case PointQuality::Bad:
        return "bad";
    case PointQuality::NeverRead:
        break;
    }
    return "never read";
}

std::string utcTimeText(qint64 milliseconds) {
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC).toString(Qt::ISODateWithMs).toStdString();
}

std::string localTimeText(qint64 milliseconds) {
    const QString format = QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz");
    return QDateTime::fromMSecsSinceEpoch(milliseconds).toString(format).toStdString();
}

std::string millisecondsText(std::chrono::microseconds duration) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f ms", static_cast<double>(duration.count()) / 1000);
    return text;
}

} // namespace host
