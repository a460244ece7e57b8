#pragma once

#include "NumberTable.h"

#include <HalvexDriverComponent/CRtu.h>

#include <mutex>
#include <unordered_map>
#include <vector>

// The figures of one RTU, and of each of its points what is staged and what is published.
// Any thread; `publishing` is taken around a change together with telling the host of it, so that changes
// reach the host in their order.
class CRtu::Values {
public:
    // A value that was read under a status point's second address never takes the place of one that was read
    // under its first.
    void stageStatus(unsigned number, double value, const CMidTime& stamp, bool first);
    void stageAnalog(unsigned number, double value, const CMidTime& stamp);

    // What is staged becomes the points' good state.
    QVector<PointUpdate> publishStaged();
    // Drops what is staged; the points that were good until now.
    QVector<PointUpdate> turnBad();
    QVector<PointUpdate> states(const CPointList& points) const;

    // The figures of one ended request are added; the connected flag stays the caller's.
    void countRequest(const RtuStatus& ended);
    RtuStatus figures() const;

    std::mutex publishing;

private:
    struct Entry {
        PointUpdate published;
        PointUpdate staged;
        bool isStaged = false;
        bool firstAddressSeen = false;
    };
    // One for each point that was put at least once.
    struct Entries {
        Entry& of(unsigned number);

        std::unordered_map<unsigned, Entry> byNumber;
        NumberTable<Entry> table;
    };

    void stage(Entry& entry, const PointUpdate& update);
    static void collectBad(Entries& entries, QVector<PointUpdate>& changed);
    static PointUpdate stateOf(const Entries& entries, unsigned number, bool analog);

    mutable std::mutex mutex;
    Entries statusEntries;
    Entries analogEntries;
    std::vector<Entry*> staged;
    bool anyGood = false;
    RtuStatus status;
};
