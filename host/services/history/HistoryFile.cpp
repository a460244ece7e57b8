#include "HistoryFile.h"

#include "site/PointValue.h"

namespace host {

namespace {

constexpr int busyMs = 200;             // how long another program may hold the file
constexpr int cachedKibibytes = 16'384; // of its pages; a page for each of 4,000 points

const char* const tables = R"(
CREATE TABLE points(
    id INTEGER PRIMARY KEY,
    channel TEXT NOT NULL,
    rtu TEXT NOT NULL,
    name TEXT NOT NULL,
    unit TEXT NOT NULL,
    UNIQUE(channel, rtu, name));
CREATE TABLE history(
    point INTEGER NOT NULL,
    time INTEGER NOT NULL,
    quality INTEGER NOT NULL,
    value REAL,
    PRIMARY KEY(point, time)) WITHOUT ROWID;
CREATE TABLE recent(
    point INTEGER NOT NULL,
    time INTEGER NOT NULL,
    quality INTEGER NOT NULL,
    value REAL);
CREATE TABLE runs(
    id INTEGER PRIMARY KEY,
    begin INTEGER NOT NULL,
    end INTEGER NOT NULL);
CREATE VIEW readings AS
    SELECT points.channel, points.rtu, points.name,
        strftime('%Y-%m-%dT%H:%M:%fZ', time / 1000.0, 'unixepoch') AS time,
        CASE quality WHEN 0 THEN 'good' WHEN 2 THEN 'refused' ELSE 'bad' END AS quality, value, points.unit
    FROM (SELECT * FROM history UNION ALL SELECT * FROM recent) AS rows
    JOIN points ON points.id = rows.point;
)";

int pragma(SQLite::Database& database, const std::string& name) {
    return database.execAndGet("PRAGMA " + name).getInt();
}

bool isEmpty(SQLite::Database& database) {
    return database.execAndGet("SELECT count(*) FROM sqlite_master").getInt() == 0;
}

} // namespace

void historyschema::check(SQLite::Database& database) {
    if (pragma(database, "application_id") != applicationId)
        throw HistoryRefused("is a database, but no history; name another file");
    if (pragma(database, "user_version") > version)
        throw HistoryRefused("was written by a newer version of this program; use that one, or name another "
                             "file");
}

void historyschema::prepare(SQLite::Database& database) {
    if (isEmpty(database))
        database.exec("PRAGMA auto_vacuum = INCREMENTAL"); // before there is anything
    else
        check(database);
    database.exec("PRAGMA journal_mode = WAL");
    // A computer that loses its power may lose the last seconds, but not the file.
    database.exec("PRAGMA synchronous = NORMAL");
    database.exec("PRAGMA cache_size = -" + std::to_string(cachedKibibytes));
    if (!isEmpty(database))
        return;
    SQLite::Transaction creation(database);
    database.exec(tables);
    database.exec("PRAGMA application_id = " + std::to_string(applicationId));
    database.exec("PRAGMA user_version = " + std::to_string(version));
    creation.commit();
}

namespace {

SQLite::Database openPrepared(const std::string& path) {
    SQLite::Database database(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, busyMs);
    historyschema::prepare(database);
    return database;
}

} // namespace

HistoryFile::HistoryFile(const std::string& path)
    : database(openPrepared(path)),
      insertPoint(database, "INSERT INTO points(channel, rtu, name, unit) VALUES(?, ?, ?, ?) "
                            "ON CONFLICT DO UPDATE SET unit = excluded.unit RETURNING id"),
      insertRow(database, "INSERT INTO recent(point, time, quality, value) VALUES(?, ?, ?, ?)"),
      updateRun(database, "UPDATE runs SET end = max(end, ?) WHERE id = ?"),
      nextPoint(database, "SELECT coalesce(min(id), 0) FROM points WHERE id > ?"),
      findBoundary(database, "SELECT max(time) FROM history WHERE point = ? AND time < ?"),
      findPiece(database,
                "SELECT time FROM history WHERE point = ? AND time < ? ORDER BY time LIMIT 1 OFFSET ?"),
      removePiece(database, "DELETE FROM history WHERE point = ? AND time < ?") {
    unsettled = static_cast<std::uint64_t>(ask("SELECT count(*) FROM recent"));
}

std::int64_t HistoryFile::ask(const char* query) {
    return database.execAndGet(query).getInt64();
}

void HistoryFile::begin() {
    if (isInTransaction)
        return;
    database.exec("BEGIN IMMEDIATE");
    isInTransaction = true;
}

void HistoryFile::commit() {
    database.exec("COMMIT");
    isInTransaction = false;
}

std::int64_t HistoryFile::numberOf(const PointRef& ref) {
    insertPoint.reset();
    insertPoint.bind(1, ref.channel->name);
    insertPoint.bind(2, ref.rtu->name);
    insertPoint.bind(3, ref.point->name);
    insertPoint.bind(4, unitOf(*ref.point));
    insertPoint.executeStep();
    const std::int64_t number = insertPoint.getColumn(0).getInt64();
    insertPoint.reset();
    return number;
}

void HistoryFile::add(std::int64_t point, const RecordedRow& row) {
    insertRow.reset();
    insertRow.bind(1, point);
    insertRow.bind(2, row.timeMs);
    insertRow.bind(3, host::numberOf(row.quality));
    if (row.value)
        insertRow.bind(4, *row.value);
    else
        insertRow.bind(4);
    insertRow.exec();
    ++unsettled;
}

std::int64_t HistoryFile::beginRun(std::int64_t timeMs) {
    const std::string time = std::to_string(timeMs);
    database.exec("INSERT INTO runs(begin, end) VALUES(" + time + ", " + time + ")");
    return database.getLastInsertRowid();
}

bool HistoryFile::hasRun(std::int64_t run) {
    return database.execAndGet("SELECT count(*) FROM runs WHERE id = " + std::to_string(run)).getInt() > 0;
}

void HistoryFile::extendRun(std::int64_t run, std::int64_t timeMs) {
    updateRun.reset();
    updateRun.bind(1, timeMs);
    updateRun.bind(2, run);
    updateRun.exec();
}

// In the order of the points, so that each page is written once.
void HistoryFile::settle() {
    database.exec("INSERT OR REPLACE INTO history SELECT point, time, quality, value FROM recent "
                  "ORDER BY point, time, rowid");
    database.exec("DELETE FROM recent");
    unsettled = 0;
}

std::int64_t HistoryFile::pointAfter(std::int64_t point) {
    nextPoint.reset();
    nextPoint.bind(1, point);
    nextPoint.executeStep();
    const std::int64_t next = nextPoint.getColumn(0).getInt64();
    nextPoint.reset();
    return next;
}

std::uint64_t HistoryFile::removeBefore(std::int64_t point, std::int64_t timeMs, std::uint64_t most) {
    findBoundary.reset();
    findBoundary.bind(1, point);
    findBoundary.bind(2, timeMs);
    findBoundary.executeStep();
    if (findBoundary.getColumn(0).isNull())
        return 0;
    std::int64_t boundary = findBoundary.getColumn(0).getInt64();
    findBoundary.reset();
    findPiece.reset();
    findPiece.bind(1, point);
    findPiece.bind(2, boundary);
    findPiece.bind(3, static_cast<std::int64_t>(most));
    if (findPiece.executeStep())
        boundary = findPiece.getColumn(0).getInt64();
    findPiece.reset();
    removePiece.reset();
    removePiece.bind(1, point);
    removePiece.bind(2, boundary);
    return static_cast<std::uint64_t>(removePiece.exec());
}

void HistoryFile::removeRunsBefore(std::int64_t timeMs) {
    database.exec("DELETE FROM runs WHERE end < " + std::to_string(timeMs));
}

std::int64_t HistoryFile::beginOfRuns() {
    return ask("SELECT coalesce(min(begin), 0) FROM runs");
}

HistoryFile::Size HistoryFile::size() {
    const auto pageSize = static_cast<std::uint64_t>(ask("PRAGMA page_size"));
    const auto pages = static_cast<std::uint64_t>(ask("PRAGMA page_count"));
    const auto unused = static_cast<std::uint64_t>(ask("PRAGMA freelist_count"));
    return {pageSize * pages, pageSize * (pages - unused)};
}

void HistoryFile::shrink(std::uint64_t bytes) {
    const auto pageSize = static_cast<std::uint64_t>(ask("PRAGMA page_size"));
    // Each page is a row to this statement.
    SQLite::Statement vacuum(database,
                             "PRAGMA incremental_vacuum(" + std::to_string(bytes / pageSize + 1) + ")");
    while (vacuum.executeStep()) {
    }
}

} // namespace host
