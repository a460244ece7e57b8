#pragma once

#include "runtime/ExitStatus.h"

namespace host {

// How the elements of a read or write came off.
struct ElementTally {
    std::size_t good = 0;
    std::size_t refused = 0;
    std::size_t failed = 0;
};

inline ExitStatus statusOf(const ElementTally& tally) {
    if (tally.refused + tally.failed == 0)
        return ExitStatus::Good;
    if (tally.good > 0)
        return ExitStatus::SomeElements;
    return tally.failed == 0 ? ExitStatus::Refused : ExitStatus::CommunicationFailed;
}

} // namespace host
