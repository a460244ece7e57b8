#pragma once

#include "Layout.h"
#include "services/ChangeBacklog.h"

#include <deque>
#include <vector>

namespace host {

// The changes on their way to the broker, in their order. Near the broker they pass through memory alone;
// while it is away, or takes fewer than come, they wait in the backlog on the disk. What was given to the
// broker stays here until it was acknowledged, and is given again, from the first one without an
// acknowledgement on, when the connection breaks before.
//
// States: away (as made), connected. One thread; the backlog outlives it.
class Outbox {
public:
    // Null: there is no place on the disk, and as many as fit into memory wait there.
    explicit Outbox(ChangeBacklog* changeBacklog, std::size_t mostInMemory = 20'000);

    void add(const std::vector<PointChange>& changes);
    // Current values, which are told anew at the next connection anyway and are not kept.
    void addCurrent(const std::vector<PointChange>& values);

    void noteConnected() { isConnected = true; }
    void noteAway();

    // Replaces `into` with the next changes to be given away, at most so many.
    void peek(std::vector<ToldChange>& into, std::size_t most);
    // The first `count` of them went away under a message id, which is none that waits.
    void noteSent(int messageId, std::size_t count);
    // The first `count` of them cannot be sent: they are dropped.
    void noteUnsendable(std::size_t count);
    // Nothing is to be said of the first `count` of them.
    void noteNeedless(std::size_t count);
    // Ids of other messages are passed over.
    void noteAcknowledged(int messageId);
    // Takes what was acknowledged off the disk. To be called every now and then.
    void settle();

    std::size_t messagesInFlight() const { return inFlight.size(); }
    // Neither kept nor on its way.
    bool isEmpty() const { return window.empty() && isDiskLoaded(); }
    // Whether some of what is not given away yet happened while nobody could be told.
    bool holdsHistorical() const;
    bool isNearlyEmpty() const { return isDiskLoaded() && window.size() - given <= lowWater; }
    std::uint64_t kept() const { return backlog != nullptr ? backlog->size() : window.size(); }
    std::uint64_t dropped() const { return droppedHere + (backlog != nullptr ? backlog->dropped() : 0); }

private:
    struct Entry {
        std::uint64_t number = 0;
        ToldChange change;
        bool isOnDisk = false;
        bool isCurrent = false;
    };
    struct Sent {
        int messageId = 0;
        std::size_t count = 0;
        bool isAcknowledged = false;
    };

    static constexpr std::size_t lowWater = 2'000; // waiting changes; fewer are joined by some of the disk
    static constexpr std::size_t loadedAtOnce = 4'000;

    bool isDiskLoaded() const;
    void load();
    void dropSurplus();
    void dropAcknowledged();

    ChangeBacklog* const backlog;
    const std::size_t mostEntries;
    bool isConnected = false;
    std::uint64_t lastNumber = 0;
    std::uint64_t nextOnDisk = 0; // the first number that was not read from the disk
    std::uint64_t settled = 0;    // the last number on the disk that was acknowledged
    bool isUnsettled = false;     // that is still on the disk
    std::deque<Entry> window;     // the oldest: first those given away, then those that wait
    std::size_t given = 0;        // of the window
    std::deque<Sent> inFlight;    // of those given away
    std::uint64_t droppedHere = 0;
};

} // namespace host
