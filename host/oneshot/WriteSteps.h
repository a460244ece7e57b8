#pragma once

#include "commands/Command.h"
#include "site/ElementText.h"

namespace host {

// One command to a site of makeWriteSite.
struct WriteStep {
    CommandAction action;
    std::vector<std::size_t> writes; // the places of what it writes
    bool isFloat = false;
};

// All of `writes`: registers, timers and counters first, then outputs and flags, so that a set point is there
// when an output starts what depends on it. Outputs and flags go in their own order.
std::vector<WriteStep> planWriteSteps(const std::vector<ElementWrite>& writes);

} // namespace host
