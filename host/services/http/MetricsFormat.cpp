#include "MetricsFormat.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace host {

namespace {

constexpr std::string_view blanks = " \t";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// The part before the first `mark`, which is taken away from `rest` together with it.
std::string_view cutPart(std::string_view& rest, char mark) {
    const std::size_t end = std::min(rest.find(mark), rest.size());
    const std::string_view part = trimmed(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return part;
}

// One of the things that a client accepts: "text/plain;version=0.0.4;q=0.5".
struct Accepted {
    std::string_view type;
    std::string_view version; // empty: any
    double weight = 1;
};

double weightOf(std::string_view text) {
    double weight = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), weight);
    return error == std::errc() && weight >= 0 && weight <= 1 ? weight : 0;
}

Accepted readAccepted(std::string_view text) {
    Accepted accepted;
    accepted.type = cutPart(text, ';');
    while (!text.empty()) {
        std::string_view value = cutPart(text, ';');
        const std::string_view name = cutPart(value, '=');
        if (name == "version")
            accepted.version = trimmed(value);
        else if (name == "q")
            accepted.weight = weightOf(trimmed(value));
    }
    return accepted;
}

} // namespace

MetricsFormat metricsFormatFor(const std::string& accept) {
    double openMetrics = 0;
    double plain = 0;
    std::string_view rest = accept;
    while (!rest.empty()) {
        const Accepted one = readAccepted(cutPart(rest, ','));
        if (one.type == "application/openmetrics-text" && (one.version.empty() || one.version == "1.0.0"))
            openMetrics = std::max(openMetrics, one.weight);
        else if (one.type == "text/plain")
            plain = std::max(plain, one.weight);
    }
    return openMetrics > 0 && openMetrics >= plain ? MetricsFormat::OpenMetrics : MetricsFormat::Prometheus;
}

const char* contentTypeOf(MetricsFormat format) {
    return format == MetricsFormat::OpenMetrics ? "application/openmetrics-text; version=1.0.0; charset=utf-8"
                                                : "text/plain; version=0.0.4; charset=utf-8";
}

} // namespace host
