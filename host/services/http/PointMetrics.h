#pragma once

#include "MetricsText.h"
#include "values/ValueStore.h"

#include <functional>

namespace host {

// Writes every polled point of a site: whether its value is good, and the value where it is. `isEnough` is
// asked every some thousand points; once it says so the rest is left out.
void writePointMetrics(MetricsText& text, const Site& site, const ValueStore& values,
                       const std::function<bool()>& isEnough);

} // namespace host
