#pragma once

#include "HistoryFile.h"
#include "HistoryRetention.h"
#include "site/HistorySettings.h"
#include "values/ChangeReader.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

// Takes the changes of a store over into the file of a history, one transaction a second. What cannot be
// written waits in the store's ring: when the file can be written again before the ring has come round,
// nothing is missing. What the ring has lost is counted, and a gap in the runs shows it.
//
// A file that is damaged is moved aside, and a new one begun. Any other trouble is told once when it begins
// and once when it is over, and tried again.
//
// Given the time by its caller. One thread; store and settings outlive it.
class HistoryWriter {
public:
    struct Moment {
        std::int64_t timeMs = 0;                      // of the day, since 1970
        std::chrono::steady_clock::time_point steady; // the same
    };
    struct Counts {
        std::uint64_t rows = 0;     // in the file by now
        std::uint64_t lost = 0;     // changes that are not in it
        std::uint64_t failures = 0; // transactions, and tries to open the file
        std::uint64_t bytes = 0;    // the file's size
    };
    using Tell = std::function<void(const std::string& message, Severity severity)>;

    // Nothing in the store has changed before `beginMs`.
    HistoryWriter(const ValueStore& valueStore, const HistorySettings& historySettings, std::int64_t beginMs,
                  Tell teller);

    // Ten times a second or so.
    void turn(const Moment& moment);
    // Writes what has come until now; the run ends here. Nothing is done after it.
    void finish(const Moment& moment);

    Counts counts() const;

private:
    struct Run {
        std::int64_t number = 0;
        std::int64_t beginMs = 0;
    };

    void work(const Moment& moment, const std::function<void()>& task);
    void open(const Moment& moment);
    void takeChanges(const Moment& moment);
    void beginFirstRun();
    void beginRun(const Moment& moment);
    void addStates();
    void add(PointIndex index, const PointState& state);
    bool hasClockMoved(const Moment& moment) const;
    void commitIfDue(const Moment& moment);
    void commit(const Moment& moment);
    void fail(const std::string& fault, const Moment& moment);
    void close(const Moment& moment);
    void replaceDamaged(const std::string& fault, const Moment& moment);
    void tellTrouble(const std::string& what);
    void tellEndOfTrouble();

    const ValueStore& store;
    const HistorySettings settings;
    const std::int64_t startMs; // where the first run begins
    const Tell tell;
    Counts counted;

    std::unique_ptr<HistoryFile> file; // null while it cannot be opened or written
    std::unique_ptr<HistoryRetention> retention;
    std::vector<std::int64_t> numbers; // of the points in the file; 0: not asked for yet
    std::vector<PointChange> changes;
    std::vector<PointState> states;

    std::optional<ChangeReader> reader; // always there; another one after each break
    std::uint64_t committed = 0;        // the reader's position at the last commit
    bool hasCommitted = false;
    std::optional<Run> run;          // that goes on
    std::optional<Run> committedRun; // that at the last commit
    std::int64_t coveredMs = 0;      // what has changed until then has been read
    std::uint64_t newRows = 0;       // since the last commit
    std::uint64_t newlyLost = 0;     // likewise

    std::optional<Moment> last; // turn
    std::chrono::steady_clock::time_point lastCommit;
    std::chrono::steady_clock::time_point lastSettling;
    std::chrono::steady_clock::time_point nextTry;
    bool isInTrouble = false;
    std::uint64_t lostBeforeTrouble = 0;
};

} // namespace host
