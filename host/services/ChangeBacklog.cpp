#include "ChangeBacklog.h"

#include "site/PointValue.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <utility>

namespace host {

namespace {

constexpr int formatVersion = 1;
// So many at once make room at the bound, so that not every change is preceded by a deletion.
constexpr std::uint64_t dropParts = 64;

const char* const tableText = "CREATE TABLE IF NOT EXISTS changes("
                              "number INTEGER PRIMARY KEY, channel INTEGER, rtu INTEGER, point INTEGER, "
                              "meaning INTEGER, value REAL, value_time INTEGER, change_time INTEGER, "
                              "quality INTEGER)";

// What makes a point's number another value: where it is read, as what, and how it is scaled. FNV-1a.
std::uint32_t meaningOf(const Point& point) {
    const double zero = valueOf(point, 0);
    const double one = valueOf(point, 1);
    char bytes[2 * sizeof(double) + sizeof(std::uint32_t) + 4] = {};
    std::memcpy(bytes, &zero, sizeof zero);
    std::memcpy(bytes + sizeof zero, &one, sizeof one);
    const auto number = static_cast<std::uint32_t>(point.address.number);
    std::memcpy(bytes + 2 * sizeof zero, &number, sizeof number);
    char* const rest = bytes + 2 * sizeof zero + sizeof number;
    rest[0] = point.address.media;
    rest[1] = point.kind == PointKind::Status ? 's' : 'a';
    rest[2] = point.isFloat ? 'f' : ' ';
    rest[3] = point.isIeee ? 'i' : ' ';
    std::uint32_t hash = 2'166'136'261U;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 16'777'619U;
    return hash;
}

bool isDamage(const SQLite::Exception& failure) {
    return failure.getErrorCode() == SQLITE_CORRUPT || failure.getErrorCode() == SQLITE_NOTADB;
}

} // namespace

struct ChangeBacklog::Database {
    explicit Database(const std::string& path)
        : file(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE | SQLite::OPEN_FULLMUTEX) {
        file.exec("PRAGMA locking_mode = EXCLUSIVE");
        file.exec("PRAGMA journal_mode = WAL");
        file.exec("PRAGMA synchronous = NORMAL");
        file.exec("PRAGMA journal_size_limit = 4000000");
        const int version = file.execAndGet("PRAGMA user_version").getInt();
        if (version != 0 && version != formatVersion)
            throw SQLite::Exception("it has the format of another version", SQLITE_NOTADB);
        file.exec(tableText);
        file.exec("PRAGMA user_version = " + std::to_string(formatVersion));
        insertion = std::make_unique<SQLite::Statement>(
            file, "INSERT OR REPLACE INTO changes VALUES(?,?,?,?,?,?,?,?,?)");
        selection = std::make_unique<SQLite::Statement>(
            file, "SELECT * FROM changes WHERE number >= ? ORDER BY number LIMIT ?");
        removal = std::make_unique<SQLite::Statement>(file, "DELETE FROM changes WHERE number <= ?");
    }

    SQLite::Database file;
    std::unique_ptr<SQLite::Statement> insertion;
    std::unique_ptr<SQLite::Statement> selection;
    std::unique_ptr<SQLite::Statement> removal;
};

ChangeBacklog::ChangeBacklog(const PointTable& pointTable, std::string filePath, std::uint64_t mostBytes)
    : points(pointTable), path(std::move(filePath)),
      mostChanges(std::max<std::uint64_t>(mostBytes / bytesPerChange, 1)) {}

ChangeBacklog::~ChangeBacklog() = default;

void ChangeBacklog::open() {
    try {
        openDatabase();
    } catch (const SQLite::Exception& failure) {
        if (isDamage(failure))
            setAside(failure.what());
        else
            noteRefusal(failure.what());
    }
}

void ChangeBacklog::openDatabase() {
    database = std::make_unique<Database>(path);
    SQLite::Statement figures(database->file, "SELECT count(*), max(number) FROM changes");
    figures.executeStep();
    count = static_cast<std::uint64_t>(figures.getColumn(0).getInt64());
    last = std::max(last, static_cast<std::uint64_t>(figures.getColumn(1).getInt64()));
}

// What it holds is lost to this process; people may still get something out of the file.
void ChangeBacklog::setAside(const std::string& why) {
    database.reset();
    droppedCount += std::exchange(count, 0);
    std::error_code ignored;
    for (const char* const ending : {"", "-wal", "-shm"})
        std::filesystem::rename(std::filesystem::u8path(path + ending),
                                std::filesystem::u8path(path + ".damaged" + ending), ignored);
    tell(path + " is damaged (" + why + ") and was renamed to " + path +
         ".damaged; changes that it held are not sent. Look after the disk");
    try {
        openDatabase();
    } catch (const SQLite::Exception& failure) {
        noteRefusal(failure.what());
    }
}

// Whether the work was done. One that was not has changed nothing.
template <typename Work>
bool ChangeBacklog::attempt(Work work) {
    try {
        if (!database)
            openDatabase();
        work();
        return true;
    } catch (const SQLite::Exception& failure) {
        if (isDamage(failure))
            setAside(failure.what());
        else
            noteRefusal(failure.what());
        return false;
    }
}

void ChangeBacklog::noteRefusal(const std::string& why) {
    if (!std::exchange(isRefusing, true))
        tell(path + " cannot be written (" + why +
             "); changes that come while the other side is away are lost until it can. Look after room and "
             "rights on the disk");
}

void ChangeBacklog::tell(const std::string& text) {
    news += (news.empty() ? "" : "\n") + text;
}

std::string ChangeBacklog::takeNews() {
    return std::exchange(news, {});
}

void ChangeBacklog::append(const std::vector<NumberedChange>& changes) {
    if (changes.empty())
        return;
    last = std::max(last, changes.back().number);
    const bool isDone = attempt([&] {
        SQLite::Transaction transaction(database->file);
        const std::uint64_t before = count;
        const std::uint64_t droppedBefore = droppedCount;
        try {
            makeRoom(changes.size());
            insert(changes);
            transaction.commit();
        } catch (const SQLite::Exception&) {
            count = before;
            droppedCount = droppedBefore;
            throw;
        }
    });
    if (!isDone)
        droppedCount += changes.size();
    else if (std::exchange(isRefusing, false))
        tell(path + " can be written again");
}

void ChangeBacklog::makeRoom(std::size_t coming) {
    if (count + coming <= mostChanges) {
        isAtBound = isAtBound && count > mostChanges / 2;
        return;
    }
    const std::uint64_t wanted = count + coming - mostChanges + mostChanges / dropParts;
    const std::uint64_t surplus = std::min(count, wanted);
    SQLite::Statement oldest(database->file, "DELETE FROM changes WHERE number IN "
                                             "(SELECT number FROM changes ORDER BY number LIMIT ?)");
    oldest.bind(1, static_cast<std::int64_t>(surplus));
    const auto removed = static_cast<std::uint64_t>(oldest.exec());
    count -= removed;
    droppedCount += removed;
    if (!std::exchange(isAtBound, true))
        tell("the changes that wait in " + path + " have reached their bound of " +
             std::to_string(mostChanges) +
             "; the oldest are dropped from now on. Look after the other side, or raise the bound");
}

void ChangeBacklog::insert(const std::vector<NumberedChange>& changes) {
    SQLite::Statement& insertion = *database->insertion;
    for (const NumberedChange& one : changes) {
        const PointRef ref = points.at(one.change.index);
        const PointState& state = one.change.state;
        insertion.reset();
        insertion.bind(1, static_cast<std::int64_t>(one.number));
        insertion.bind(2, ref.channel->id);
        insertion.bind(3, ref.rtu->id);
        insertion.bind(4, ref.point->id);
        insertion.bind(5, meaningOf(*ref.point));
        insertion.bind(6, state.value);
        insertion.bind(7, static_cast<std::int64_t>(state.valueTimeMs));
        insertion.bind(8, static_cast<std::int64_t>(state.changeTimeMs));
        insertion.bind(9, static_cast<int>(state.quality));
        insertion.exec();
    }
    count += changes.size();
}

std::vector<NumberedChange> ChangeBacklog::read(std::uint64_t& next, std::size_t most) {
    std::vector<NumberedChange> found;
    if (count == 0)
        return found;
    attempt([&] {
        SQLite::Statement& selection = *database->selection;
        selection.reset();
        selection.bind(1, static_cast<std::int64_t>(next));
        selection.bind(2, static_cast<std::int64_t>(most));
        std::size_t rows = 0;
        while (selection.executeStep()) {
            ++rows;
            NumberedChange one;
            one.number = static_cast<std::uint64_t>(selection.getColumn(0).getInt64());
            next = one.number + 1;
            const std::optional<PointIndex> index =
                findPoint(selection.getColumn(1).getInt(), selection.getColumn(2).getInt(),
                          selection.getColumn(3).getUInt(), selection.getColumn(4).getUInt());
            if (!index) {
                ++droppedCount;
                continue;
            }
            one.change.index = *index;
            PointState& state = one.change.state;
            state.value = selection.getColumn(5).getDouble();
            state.valueTimeMs = selection.getColumn(6).getInt64();
            state.changeTimeMs = selection.getColumn(7).getInt64();
            state.quality = static_cast<PointQuality>(selection.getColumn(8).getInt());
            found.push_back(one);
        }
        selection.reset();
        if (rows < most)
            next = std::max(next, last + 1);
    });
    return found;
}

std::optional<PointIndex> ChangeBacklog::findPoint(int channelId, int rtuId, unsigned pointId,
                                                   std::uint32_t meaning) {
    const PointTable::Block* const block = points.find(channelId, rtuId);
    if (block == nullptr)
        return std::nullopt;
    std::unordered_map<unsigned, PointIndex>& ids = byIds[block];
    if (ids.empty())
        for (PointIndex i = block->first; i < block->end(); ++i)
            ids.emplace(points.at(i).point->id, i);
    const auto found = ids.find(pointId);
    if (found == ids.end() || meaningOf(*points.at(found->second).point) != meaning)
        return std::nullopt;
    return found->second;
}

void ChangeBacklog::removeUpTo(std::uint64_t number) {
    if (count == 0)
        return;
    attempt([&] {
        SQLite::Statement& removal = *database->removal;
        removal.reset();
        removal.bind(1, static_cast<std::int64_t>(number));
        count -= std::min(count, static_cast<std::uint64_t>(removal.exec()));
    });
}

} // namespace host
