#pragma once

#include <HalvexDriverComponent/RemoteTerminalUnit.h>

#include <QtGlobal>

#include <vector>

// When each RTU of a channel is to be asked for each kind of poll. Times are milliseconds of a clock that
// the caller reads; nothing happens between the calls.
//
// The first polls are spread evenly over their periods, so that a channel with many RTUs does not ask for
// everything at once. From then on a poll stays on its own grid of due times, however late it is asked for.
// One thread at a time.
class ScanSchedule {
public:
    struct Rtu {
        int id;
        ScanPeriods periods;
    };
    struct Poll {
        int rtuId;
        int kind;
    };

    ScanSchedule(const std::vector<Rtu>& rtus, qint64 start);

    // The polls that have fallen due, the longest overdue first, each once: whole periods missed by a late
    // call count as overruns.
    std::vector<Poll> due(qint64 now);
    // Passes over everything due until `now`, neither asked for nor an overrun.
    void skipTo(qint64 now);
    // The overruns since the last call of this operation.
    quint64 takeOverruns();

private:
    struct Entry {
        Poll poll;
        qint64 period;
        qint64 next;
    };
    // Advances the entry to its first due time after `now`; returns how many it passed over.
    static qint64 advance(Entry& entry, qint64 now);

    std::vector<Entry> entries;
    quint64 overruns = 0;
};
