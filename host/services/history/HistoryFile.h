#pragma once

#include "HistoryRow.h"
#include "values/PointTable.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace host {

// A file that is no history, or one of a newer program: what it is, and what to do.
class HistoryRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What the tables of a history are, for whoever reads and whoever writes it.
//
// points: a number for each name (line, controller, point), for good.
// history: changes by point and time. One row for each millisecond of a point: of several changes within it
//     the last one.
// recent: changes in the order in which they came. Nothing is moved about to add one. They go over to
//     `history` many at a time, so that those of one point share a page of the file.
// runs: from when to when every change was recorded. Outside of them nothing is known.
// readings: a view of all changes with their names, for people.
namespace historyschema {

constexpr int applicationId = 0x53424873; // "SBHs", in the header of the file
constexpr int version = 1;

// Creates what is missing. Throws HistoryRefused and SQLite::Exception.
void prepare(SQLite::Database& database);
// Throws HistoryRefused when this program cannot read it.
void check(SQLite::Database& database);

} // namespace historyschema

// The file of a history, as it is written: SQLite with a write-ahead log, so that others read meanwhile, and
// what was committed outlives this process however it ends. All of it throws SQLite::Exception; then
// the object is of no use any more, and what was not committed is not in the file. One thread.
class HistoryFile {
public:
    // Makes the file when there is none. Throws HistoryRefused, too.
    explicit HistoryFile(const std::string& path);

    // Nothing happens when a transaction has begun already.
    void begin();
    void commit();

    // The number of a point, which is made when there is none.
    std::int64_t numberOf(const PointRef& ref);
    void add(std::int64_t point, const RecordedRow& row);

    // The number of a new run.
    std::int64_t beginRun(std::int64_t timeMs);
    bool hasRun(std::int64_t run);
    void extendRun(std::int64_t run, std::int64_t timeMs);

    // Moves all that is in `recent` to `history`.
    void settle();
    std::uint64_t unsettledRows() const { return unsettled; }

    // The number of the point after this one, or 0.
    std::int64_t pointAfter(std::int64_t point);
    // Removes changes of a point from before this time, the oldest first, at most about so many; but for the
    // last one, which tells the value at this time. Returns how many.
    std::uint64_t removeBefore(std::int64_t point, std::int64_t timeMs, std::uint64_t most);
    // Runs that were over before this time.
    void removeRunsBefore(std::int64_t timeMs);
    // When the first run began; 0 when there is none.
    std::int64_t beginOfRuns();

    struct Size {
        std::uint64_t file = 0; // bytes, without the write-ahead log
        std::uint64_t used = 0; // of these
    };
    Size size();
    // Gives so many bytes of a file that are not used back to the disk, at most.
    void shrink(std::uint64_t bytes);

private:
    std::int64_t ask(const char* query);

    SQLite::Database database;
    SQLite::Statement insertPoint;
    SQLite::Statement insertRow;
    SQLite::Statement updateRun;
    SQLite::Statement nextPoint;
    SQLite::Statement findBoundary;
    SQLite::Statement findPiece;
    SQLite::Statement removePiece;
    std::uint64_t unsettled = 0; // rows in `recent`
    bool isInTransaction = false;
};

} // namespace host
