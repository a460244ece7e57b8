#include "HistoryReader.h"

#include <filesystem>

namespace host {

namespace fs = std::filesystem;

namespace {

constexpr int busyMs = 5'000; // while somebody else recovers the write-ahead log

std::string percentEncoded(const std::string& path) {
    const char* const digits = "0123456789ABCDEF";
    std::string text;
    for (const char character : path) {
        if (character != '%' && character != '?' && character != '#') {
            text += character;
            continue;
        }
        const auto code = static_cast<unsigned char>(character);
        text += {'%', digits[code >> 4], digits[code & 0xF]};
    }
    return text;
}

// Who may read the file but not write to its folder cannot take part in the write-ahead log. When
// there is none, nobody writes, and the file can be read as it stands.
std::unique_ptr<SQLite::Database> openToRead(const std::string& path) {
    std::error_code failure;
    if (!fs::exists(fs::u8path(path), failure))
        throw HistoryRefused("is not there; a host that runs the site makes it");
    auto database = std::make_unique<SQLite::Database>(path, SQLite::OPEN_READONLY, busyMs);
    try {
        database->execAndGet("SELECT count(*) FROM sqlite_master");
    } catch (const SQLite::Exception&) {
        if (fs::exists(fs::u8path(path + "-wal"), failure))
            throw;
        const std::string full = fs::absolute(fs::u8path(path)).generic_u8string();
        database = std::make_unique<SQLite::Database>("file:" + percentEncoded(full) + "?immutable=1",
                                                      SQLite::OPEN_READONLY | SQLite::OPEN_URI, busyMs);
    }
    return database;
}

} // namespace

HistoryReader::HistoryReader(const std::string& path) : database(openToRead(path)) {
    historyschema::check(*database);
    database->exec("BEGIN");
}

std::vector<HistoryReader::NamedPoint> HistoryReader::find(const std::string& name) {
    SQLite::Statement statement(*database, "SELECT id, unit FROM points WHERE rtu || '/' || name = ?1 "
                                           "OR channel || '/' || rtu || '/' || name = ?1");
    statement.bind(1, name);
    return namedPoints(statement);
}

std::vector<HistoryReader::NamedPoint> HistoryReader::find(const PointRef& ref) {
    SQLite::Statement statement(*database,
                                "SELECT id, unit FROM points WHERE channel = ? AND rtu = ? AND name = ?");
    statement.bind(1, ref.channel->name);
    statement.bind(2, ref.rtu->name);
    statement.bind(3, ref.point->name);
    return namedPoints(statement);
}

std::vector<HistoryReader::NamedPoint> HistoryReader::namedPoints(SQLite::Statement& statement) {
    std::vector<NamedPoint> found;
    while (statement.executeStep())
        found.push_back({statement.getColumn(0).getInt64(), statement.getColumn(1).getString()});
    return found;
}

std::vector<RecordedRun> HistoryReader::runs(std::int64_t fromMs, std::int64_t toMs) {
    SQLite::Statement statement(*database,
                                "SELECT begin, end FROM runs WHERE end >= ? AND begin < ? ORDER BY begin");
    statement.bind(1, fromMs);
    statement.bind(2, toMs);
    std::vector<RecordedRun> found;
    while (statement.executeStep())
        found.push_back({statement.getColumn(0).getInt64(), statement.getColumn(1).getInt64()});
    return found;
}

std::int64_t HistoryReader::endOfRuns() {
    return database->execAndGet("SELECT coalesce(max(end), 0) FROM runs").getInt64();
}

void HistoryReader::read(std::int64_t point, std::int64_t fromMs, std::int64_t toMs,
                         const std::function<void(const RecordedRow&)>& take) {
    SQLite::Statement last(*database, "SELECT max(time) FROM (SELECT max(time) AS time FROM history "
                                      "WHERE point = ?1 AND time < ?2 UNION ALL "
                                      "SELECT max(time) FROM recent WHERE point = ?1 AND time < ?2)");
    last.bind(1, point);
    last.bind(2, fromMs);
    last.executeStep();
    const std::int64_t first = last.getColumn(0).isNull() ? fromMs : last.getColumn(0).getInt64();
    SQLite::Statement rows(*database, "SELECT time, quality, value, 0 AS number FROM history "
                                      "WHERE point = ?1 AND time >= ?2 AND time < ?3 UNION ALL "
                                      "SELECT time, quality, value, rowid FROM recent "
                                      "WHERE point = ?1 AND time >= ?2 AND time < ?3 ORDER BY time, number");
    rows.bind(1, point);
    rows.bind(2, first);
    rows.bind(3, toMs);
    while (rows.executeStep()) {
        RecordedRow row{rows.getColumn(0).getInt64(), qualityOf(rows.getColumn(1).getInt()), {}};
        if (!rows.getColumn(2).isNull())
            row.value = rows.getColumn(2).getDouble();
        take(row);
    }
}

} // namespace host
