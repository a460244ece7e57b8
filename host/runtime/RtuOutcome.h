#pragma once

#include "ExitStatus.h"
#include "HostRuntime.h"
#include "values/ValueStore.h"

namespace host {

// How the run went for one RTU.
struct RtuOutcome {
    RtuFigures figures;
    std::size_t goodPoints = 0;
    std::size_t badPoints = 0;
    std::size_t refusedPoints = 0;
    std::size_t neverReadPoints = 0;
    qint64 oldestValueMs = 0; // since 1970, of all values that were ever read; 0: none was
};

std::vector<RtuOutcome> collectOutcomes(const std::vector<RtuFigures>& figures, const ValueStore& store);

// Communication has failed when an enabled RTU that has points gave no answer or is not connected at the end.
// An RTU with points that are not good, whose last failure was a refusal, counts as refused instead, and so
// does one that is connected and refuses single points.
ExitStatus judge(const std::vector<RtuOutcome>& outcomes);

} // namespace host
