#pragma once

#include "HistoryFile.h"

#include <functional>
#include <memory>
#include <vector>

namespace host {

// The file of a history, as it is read, by whoever may, while a host writes it or not. All that is read is of
// one moment, that of the first question. Throws SQLite::Exception. One thread.
class HistoryReader {
public:
    // Throws HistoryRefused, too, when there is none.
    explicit HistoryReader(const std::string& path);

    struct NamedPoint {
        std::int64_t number = 0;
        std::string unit; // at the last start of the host
    };
    // Of a point that may be no longer in the site: RTU/POINT or LINE/RTU/POINT.
    std::vector<NamedPoint> find(const std::string& name);
    std::vector<NamedPoint> find(const PointRef& ref);

    // Those that touch the time from `fromMs` to before `toMs`, in their order.
    std::vector<RecordedRun> runs(std::int64_t fromMs, std::int64_t toMs);
    // When the last run ended, or was last seen to go on; 0 when there is none.
    std::int64_t endOfRuns();
    // The last row from before `fromMs`, and those before `toMs`, in the order of their times.
    void read(std::int64_t point, std::int64_t fromMs, std::int64_t toMs,
              const std::function<void(const RecordedRow&)>& take);

private:
    std::vector<NamedPoint> namedPoints(SQLite::Statement& statement);

    std::unique_ptr<SQLite::Database> database;
};

} // namespace host
