#pragma once

#include "runtime/HostRuntime.h"
#include "values/ValueStore.h"

namespace host {

// How the run went for one RTU.
struct RtuOutcome {
    RtuFigures figures;
    std::size_t goodPoints = 0;
    std::size_t badPoints = 0;
    std::size_t neverReadPoints = 0;
};

enum class ExitStatus { Good = 0, CommunicationFailed = 1, Configuration = 2, SomeElements = 3, Refused = 4 };

std::vector<RtuOutcome> collectOutcomes(const std::vector<RtuFigures>& figures, const ValueStore& store);

// Communication has failed when an enabled RTU that has points gave no answer or is not connected at the end.
// An RTU with points that are bad or were never read, whose last failure was a refusal, counts as refused
// instead.
ExitStatus judge(const std::vector<RtuOutcome>& outcomes);

// A line per RTU under a heading, then one per channel on whose line something has gone wrong.
std::string summaryText(const std::vector<RtuOutcome>& outcomes, const std::vector<ChannelFigures>& channels);

} // namespace host
