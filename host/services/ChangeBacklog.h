#pragma once

#include "values/ValueStore.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace host {

// A change, and its place in the order of all that a service tells.
struct NumberedChange {
    std::uint64_t number = 0; // from 1 on, rising
    PointChange change;
};

// Changes that wait on the disk until the other side of a service is there again: an SQLite file, bounded. At
// its bound the oldest make room and are counted. It is there again after the process was killed, at the
// latest without what was appended in the last moment before the power failed.
//
// A change is kept under the ids of its point. After the site file was edited, those of points that are no
// longer there, or whose number means something else now, are left out and counted, too.
//
// No function fails: what the disk refuses is dropped and counted, a damaged file is set aside under the
// ending ".damaged" and a new one begun, and takeNews() tells both. One thread at a time; the points outlive
// it.
class ChangeBacklog {
public:
    // Makes nothing yet.
    ChangeBacklog(const PointTable& pointTable, std::string filePath, std::uint64_t mostBytes);
    ChangeBacklog(const ChangeBacklog&) = delete;
    ChangeBacklog& operator=(const ChangeBacklog&) = delete;
    ~ChangeBacklog();

    // Takes up what an earlier process has left. Its folder has to be there, and the file this process's
    // alone.
    void open();

    // In one transaction. The numbers are none that is kept already.
    void append(const std::vector<NumberedChange>& changes);
    // At most so many in their order, from this number on. `next` becomes the number to go on with.
    std::vector<NumberedChange> read(std::uint64_t& next, std::size_t most);
    // Those up to this number, itself included.
    void removeUpTo(std::uint64_t number);

    std::uint64_t size() const { return count; }
    std::uint64_t lastNumber() const { return last; } // 0: it has never held any
    std::uint64_t dropped() const { return droppedCount; }
    // What people should know since the last call: what happened and what to check. Empty: nothing.
    std::string takeNews();

    // Of one change in the file, with its part of the pages around it.
    static constexpr std::uint64_t bytesPerChange = 64;

private:
    struct Database;

    template <typename Work>
    bool attempt(Work work);
    void openDatabase();
    void setAside(const std::string& why);
    void makeRoom(std::size_t coming);
    void insert(const std::vector<NumberedChange>& changes);
    void noteRefusal(const std::string& why);
    void tell(const std::string& text);
    std::optional<PointIndex> findPoint(int channelId, int rtuId, unsigned pointId, std::uint32_t meaning);

    const PointTable& points;
    const std::string path;
    const std::uint64_t mostChanges;
    std::unique_ptr<Database> database; // null: there is none, and what is appended is dropped
    std::uint64_t count = 0;
    std::uint64_t last = 0;
    std::uint64_t droppedCount = 0;
    bool isRefusing = false; // the disk, which was told
    bool isAtBound = false;  // likewise
    std::string news;
    // The points of the RTUs that were looked for, by their ids.
    std::map<const PointTable::Block*, std::unordered_map<unsigned, PointIndex>> byIds;
};

} // namespace host
