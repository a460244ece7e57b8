#include "ValueText.h"

#include <cstdio>

namespace host {

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
