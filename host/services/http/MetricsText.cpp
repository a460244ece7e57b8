#include "MetricsText.h"

#include "site/NumberText.h"

#include <array>
#include <cmath>

namespace host {

namespace {

// The ends of the steps in seconds, as the label "le" has them: with a point, which OpenMetrics asks for.
constexpr std::array<const char*, RoundTripHistogram::ends.size()> stepEnds{
    {"0.0005", "0.001", "0.002", "0.005", "0.01", "0.02", "0.05", "0.1", "0.2", "0.5", "1.0", "2.0", "5.0"}};

void appendEscaped(std::string& text, const std::string& value) {
    for (const char letter : value)
        if (letter == '\n')
            text += "\\n";
        else if (letter == '\\' || letter == '"')
            (text += '\\') += letter;
        else
            text += letter;
}

void appendValue(std::string& text, double value) {
    if (std::isnan(value))
        text += "NaN";
    else if (std::isinf(value))
        text += value > 0 ? "+Inf" : "-Inf";
    else
        appendNumber(text, value);
}

} // namespace

MetricLabels MetricLabels::with(const char* name, const std::string& value) const {
    MetricLabels more = *this;
    if (!more.written.empty())
        more.written += ',';
    more.written.append(name).append("=\"");
    appendEscaped(more.written, value);
    more.written += '"';
    return more;
}

// In Prometheus' own format a family has its samples' name, in OpenMetrics it has no ending.
void MetricsText::begin(const char* name, const char* type, const char* ending, const char* help) {
    const std::string plain = name;
    family = plain + ending;
    const std::string& called = format == MetricsFormat::OpenMetrics ? plain : family;
    heading = "# HELP " + called + ' ' + help + "\n# TYPE " + called + ' ' + type + '\n';
}

void MetricsText::beginCounter(const char* name, const char* help) {
    begin(name, "counter", "_total", help);
}

void MetricsText::beginGauge(const char* name, const char* help) {
    begin(name, "gauge", "", help);
}

void MetricsText::beginInfo(const char* name, const char* help) {
    begin(name, format == MetricsFormat::OpenMetrics ? "info" : "gauge", "_info", help);
}

void MetricsText::beginHistogram(const char* name, const char* help) {
    begin(name, "histogram", "", help);
}

void MetricsText::writeHeading() {
    text += heading;
    heading.clear();
}

void MetricsText::writeName(const char* ending, const MetricLabels& labels) {
    writeHeading();
    text.append(family).append(ending);
    if (!labels.text().empty())
        text.append("{").append(labels.text()).append("}");
    text += ' ';
}

void MetricsText::writeCount(const MetricLabels& labels, std::uint64_t count) {
    writeName("", labels);
    text += std::to_string(count) + '\n';
}

void MetricsText::sample(const MetricLabels& labels, double value) {
    writeName("", labels);
    appendValue(text, value);
    text += '\n';
}

void MetricsText::sample(const MetricLabels& labels, const RoundTripHistogram& roundTrips) {
    std::uint64_t count = 0;
    for (std::size_t i = 0; i < roundTrips.counts.size(); ++i) {
        count += roundTrips.counts[i];
        writeName("_bucket", labels.with("le", i < stepEnds.size() ? stepEnds[i] : "+Inf"));
        text += std::to_string(count) + '\n';
    }
    writeName("_sum", labels);
    appendValue(text, std::chrono::duration<double>(roundTrips.sum).count());
    text += '\n';
    writeName("_count", labels);
    text += std::to_string(count) + '\n';
}

std::string MetricsText::finish() {
    if (format == MetricsFormat::OpenMetrics)
        text += "# EOF\n";
    return std::move(text);
}

} // namespace host
