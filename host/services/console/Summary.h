#pragma once

#include "runtime/RtuOutcome.h"

#include <string>

namespace host {

// A line per RTU under a heading, then one per channel on whose line something has gone wrong.
std::string summaryText(const std::vector<RtuOutcome>& outcomes, const std::vector<ChannelFigures>& channels);

} // namespace host
