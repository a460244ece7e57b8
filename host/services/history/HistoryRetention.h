#pragma once

#include "HistoryFile.h"
#include "site/HistorySettings.h"

namespace host {

// Removes what is too old, and the oldest when the file is too large: point by point, a few rows at each
// call, so that no call takes long. One thread; the file outlives it.
class HistoryRetention {
public:
    HistoryRetention(HistoryFile& historyFile, const HistorySettings& historySettings)
        : file(historyFile), settings(historySettings) {}

    // Within a transaction, once a second or so. `written` rows have come since the last call: more than
    // those can be removed, lest the file grows all the same.
    void work(std::int64_t nowMs, std::uint64_t written);

private:
    void beginSweep(std::int64_t nowMs);
    void sweep(std::uint64_t most);

    HistoryFile& file;
    const HistorySettings settings;
    std::int64_t limitMs = 0; // what was before is removed
    std::int64_t point = 0;   // where the sweep is; 0: none goes on
    std::int64_t nextSweepMs = 0;
};

} // namespace host
