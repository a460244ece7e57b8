#pragma once

#include <string>

namespace host {

// How metrics are written: Prometheus' text format 0.0.4, or OpenMetrics 1.0.
enum class MetricsFormat { Prometheus, OpenMetrics };

// What a client prefers by its Accept header: OpenMetrics where that is named and no other text is liked
// better.
MetricsFormat metricsFormatFor(const std::string& accept);
// What the Content-Type of the answer says.
const char* contentTypeOf(MetricsFormat format);

} // namespace host
