#pragma once

#include "NumberTable.h"
#include "StableArray.h"

#include <HalvexDriverComponent/CRtu.h>

#include <atomic>
#include <mutex>
#include <vector>

// The figures of one RTU, and of each of its points what is staged and what is published.
// Staging and publishing on one thread, the channel's, so that a value can be staged without a lock;
// everything else on any. `publishing` is taken around a change together with telling the host of it, so that
// changes reach the host in their order.
//
// A host may have a million points: what is kept of each is in Entry, and what is told of those that are
// staged together is made while they are staged.
class CRtu::Values {
public:
    explicit Values(const CPointList& ofTheRtu) : points(ofTheRtu) {}

    // A value that was read under a status point's second address never takes the place of one that was read
    // under its first.
    void stageStatus(unsigned number, double value, const CMidTime& stamp, bool first) {
        Entry* const entry = statusEntries.table.find(number);
        if (!isReady(entry))
            return stageStatusUnready(number, value, stamp, first);
        if (!first && entry->firstAddressSeen)
            return;
        entry->firstAddressSeen = first;
        stage(statusEntries, *entry, number, value, stamp);
    }
    void stageAnalog(unsigned number, double value, const CMidTime& stamp) {
        Entry* const entry = analogEntries.table.find(number);
        if (!isReady(entry))
            return stageAnalogUnready(number, value, stamp);
        stage(analogEntries, *entry, number, value, stamp);
    }

    // What is staged becomes the points' good state. The changes stay until endPublishing().
    const QVector<PointUpdate>& publishStaged();
    void endPublishing();
    // What is staged will never be published; the points that were good until now.
    QVector<PointUpdate> turnBad();
    QVector<PointUpdate> states() const;

    // The figures of one ended request are added; the connected flag stays the caller's.
    void countRequest(const RtuStatus& ended);
    RtuStatus figures() const;

    std::mutex publishing;

private:
    // One for each point that was put at least once. Its number is where the table has it.
    struct Entry {
        // What is published, under the mutex.
        double value = 0;
        CMidTime stamp;
        PointQuality quality = PointQuality::NeverRead;

        // The staging thread's own.
        quint32 stagedAt = 0; // its place among what is staged, if it is there
        bool firstAddressSeen = false;
    };
    struct Entries {
        const bool areAnalog;
        StableArray<Entry> objects;
        NumberTable<Entry> table;
    };

    // Staging a value needs no more than a few writes, unless it is the point's first, the values have turned
    // bad since the last one, or there is no room. These seldom cases are left to functions of their own.
    bool isReady(const Entry* entry) const {
        return entry != nullptr && !hasTurnedBad() && stagedCount < stagedRoom;
    }
    void stageStatusUnready(unsigned number, double value, const CMidTime& stamp, bool first);
    void stageAnalogUnready(unsigned number, double value, const CMidTime& stamp);
    void makeReady(Entries& entries, unsigned number);
    void addEntry(Entries& entries, unsigned number);

    void stage(const Entries& entries, Entry& entry, unsigned number, double value, const CMidTime& stamp) {
        if (!isStaged(entry)) {
            stagedEntries[stagedCount] = &entry;
            entry.stagedAt = stagedCount++;
        }
        PointUpdate& update = stagedUpdates[entry.stagedAt];
        update.analog = entries.areAnalog;
        update.number = number;
        update.value = value;
        update.stamp = stamp;
        update.quality = PointQuality::Good;
    }
    bool isStaged(const Entry& entry) const {
        return entry.stagedAt < stagedCount && stagedEntries[entry.stagedAt] == &entry;
    }
    void growStaged();
    void useUpdates();
    bool hasTurnedBad() const { return turnsBad.load(std::memory_order_acquire) != turnsBadSeen; }
    void dropIfTurnedBad();
    static PointUpdate updateOf(const Entries& entries, unsigned number, const Entry& entry);
    static PointUpdate stateOf(const Entries& entries, unsigned number);
    static void collectBad(Entries& entries, QVector<PointUpdate>& changed);

    const CPointList& points;
    mutable std::mutex mutex;
    Entries statusEntries{false, {}, {}};
    Entries analogEntries{true, {}, {}};
    std::atomic<unsigned> turnsBad{0}; // changes under the mutex
    bool anyGood = false;
    RtuStatus status;

    // The staging thread's own. What is told is made while it is staged; the memory is kept for the next
    // values.
    quint32 stagedCount = 0;
    quint32 stagedRoom = 0; // the size of the updates, of which the first ones are staged
    QVector<PointUpdate> updates;
    // Those of the vector, which itself asks at each access whether it is shared.
    PointUpdate* stagedUpdates = nullptr;
    std::vector<Entry*> stagedEntries; // of the same points
    unsigned turnsBadSeen = 0;
};
