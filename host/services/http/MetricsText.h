#pragma once

#include "MetricsFormat.h"
#include "runtime/RoundTripHistogram.h"

#include <cstdint>
#include <string>
#include <type_traits>

namespace host {

// The labels of a sample, written and escaped once for many samples. A value.
class MetricLabels {
public:
    // Behind those that are there.
    MetricLabels with(const char* name, const std::string& value) const;
    // "site=\"north\",line=\"waterworks\""
    const std::string& text() const { return written; }

private:
    std::string written;
};

// Writes metrics in either format, family by family: first what the family is, then its samples. A family
// without a sample is left out. One thread.
class MetricsText {
public:
    explicit MetricsText(MetricsFormat textFormat) : format(textFormat) {}

    // Names are without the endings _total and _info, which the formats add in their ways.
    void beginCounter(const char* name, const char* help);
    void beginGauge(const char* name, const char* help);
    void beginInfo(const char* name, const char* help);
    void beginHistogram(const char* name, const char* help);

    // Of a counter, a gauge or an info, which is 1.
    template <typename Count, std::enable_if_t<std::is_integral_v<Count>, int> = 0>
    void sample(const MetricLabels& labels, Count count) {
        writeCount(labels, static_cast<std::uint64_t>(count));
    }
    void sample(const MetricLabels& labels, double value);
    // Of a histogram, in seconds.
    void sample(const MetricLabels& labels, const RoundTripHistogram& roundTrips);

    // The whole text. Nothing is to be written behind it.
    std::string finish();

private:
    void begin(const char* name, const char* type, const char* ending, const char* help);
    void writeHeading();
    void writeCount(const MetricLabels& labels, std::uint64_t count);
    void writeName(const char* ending, const MetricLabels& labels);

    const MetricsFormat format;
    std::string text;
    std::string family;  // as its samples are called, without the endings of a histogram's
    std::string heading; // of the family; empty once it stands in the text
};

} // namespace host
