#pragma once

#include "plan/ReadTelegram.h"
#include "site/Site.h"

class CRtu;

namespace host {

// Give one of the driver's RTUs the points of `rtu` that `telegrams` read, with hidden points for the
// elements that are read in vain, and let it make its polls of them. Where there are none, its polls have no
// telegram. While the channel's thread runs: on it, between two turns, and while no command is given to the
// RTU.
void givePointsToRead(CRtu& target, const Rtu& rtu, const std::vector<ReadTelegram>& telegrams);
// The same, for the RTU that takes the commands for all points of `rtu`, also those that it does not read.
void givePointsToReadAndCommand(CRtu& target, const Rtu& rtu, const std::vector<ReadTelegram>& telegrams);

} // namespace host
