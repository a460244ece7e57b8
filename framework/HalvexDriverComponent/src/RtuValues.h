#pragma once

#include "NumberTable.h"

#include <HalvexDriverComponent/CRtu.h>

#include <atomic>
#include <mutex>
#include <unordered_map>
#include <vector>

// The figures of one RTU, and of each of its points what is staged and what is published.
// Staging and publishing on one thread, the channel's, so that a value can be staged without a lock;
// everything else on any. `publishing` is taken around a change together with telling the host of it, so that
// changes reach the host in their order.
class CRtu::Values {
public:
    // A value that was read under a status point's second address never takes the place of one that was read
    // under its first.
    void stageStatus(unsigned number, double value, const CMidTime& stamp, bool first) {
        Entry& entry = statusEntries.of(number, mutex);
        if (!first && entry.firstAddressSeen)
            return;
        entry.firstAddressSeen = first;
        stage(entry, value, stamp);
    }
    void stageAnalog(unsigned number, double value, const CMidTime& stamp) {
        stage(analogEntries.of(number, mutex), value, stamp);
    }

    // What is staged becomes the points' good state. The changes stay until the next call.
    const QVector<PointUpdate>& publishStaged();
    // What is staged will never be published; the points that were good until now.
    QVector<PointUpdate> turnBad();
    QVector<PointUpdate> states(const CPointList& all) const;

    // The figures of one ended request are added; the connected flag stays the caller's.
    void countRequest(const RtuStatus& ended);
    RtuStatus figures() const;

    std::mutex publishing;

private:
    struct Entry {
        PointUpdate published; // under the mutex
        PointUpdate staged;
        bool isStaged = false;
        bool firstAddressSeen = false;
    };
    // One for each point that was put at least once.
    struct Entries {
        explicit Entries(bool ofAnalogPoints) : isAnalog(ofAnalogPoints) {}

        // Takes the guard for a new one.
        Entry& of(unsigned number, std::mutex& guard) {
            Entry* const entry = table.find(number);
            return entry != nullptr ? *entry : search(number, guard);
        }
        Entry& search(unsigned number, std::mutex& guard);

        const bool isAnalog;
        std::unordered_map<unsigned, Entry> byNumber;
        NumberTable<Entry> table;
    };

    void stage(Entry& entry, double value, const CMidTime& stamp) {
        dropIfTurnedBad();
        entry.staged.value = value;
        entry.staged.stamp = stamp;
        if (entry.isStaged)
            return;
        entry.isStaged = true;
        staged.push_back(&entry);
    }
    void dropIfTurnedBad() {
        const unsigned turns = turnsBad.load(std::memory_order_acquire);
        if (turns != turnsBadSeen)
            dropStaged(turns);
    }
    void dropStaged(unsigned turns);
    static void collectBad(Entries& entries, QVector<PointUpdate>& changed);
    static PointUpdate stateOf(const Entries& entries, unsigned number, bool analog);

    mutable std::mutex mutex;
    Entries statusEntries{false};
    Entries analogEntries{true};
    std::atomic<unsigned> turnsBad{0}; // changes under the mutex
    bool anyGood = false;
    RtuStatus status;

    // The staging thread's own.
    std::vector<Entry*> staged;
    QVector<PointUpdate> lastPublished; // keeps its memory for the next values
    unsigned turnsBadSeen = 0;
};
