#pragma once

#include "runtime/ExitStatus.h"
#include "services/history/Aggregation.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace host {

enum class HistoryFormat { Csv, Json };

struct HistoryOptions {
    std::string sitePath;
    std::vector<std::string> points; // RTU/POINT or LINE/RTU/POINT
    std::string from = "-24h";
    std::string to = "now";
    std::optional<std::chrono::milliseconds> every; // none: the changes themselves
    Aggregate aggregate = Aggregate::Mean;
    HistoryFormat format = HistoryFormat::Csv;
    std::string plot;        // a file for a picture; empty: none
    bool overwrites = false; // that file
};

// Tells or draws what was recorded of points.
ExitStatus showHistory(const HistoryOptions& options);

} // namespace host
