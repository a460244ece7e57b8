#pragma once

#include "ContinuousClock.h"
#include "SBusRequest.h"

#include <QList>
#include <QMutex>

#include <atomic>
#include <functional>

class SBusProtocolBase;

// The requests of one channel that may only be sent after a delay, such as the release of a pulse output.
// Threads: schedule on any; dispatchDue on the channel's; setProtocol on the host's, before that thread
// starts. Lock order: this queue's mutex, then the table's.
class SBusDelayedQueue {
public:
    // As for ContinuousClock; a test may give clocks of its own.
    explicit SBusDelayedQueue(std::function<int()> timeOfDay = sbus::ContinuousClock::utcTimeOfDay,
                              std::function<qint64()> steadyTime = sbus::ContinuousClock::steadyMilliseconds);
    ~SBusDelayedQueue();

    void setProtocol(SBusProtocolBase* newProtocol);
    // Keeps a copy of `request` until `delayMs` is over.
    void schedule(unsigned delayMs, const SBusRequest& request);
    // Hands what is due to the protocol object's queueRequest, in the order in which it was scheduled.
    void dispatchDue();

private:
    struct Entry {
        quint32 remainingMs; // from the clock's last reading on
        SBusRequest request;
    };

    void readClock();

    QMutex mutex;
    sbus::ContinuousClock clock;
    QList<Entry> entries;
    // Mirrors entries.isEmpty() for the look without the lock that most turns of the loop end with.
    std::atomic<bool> empty{true};
    SBusProtocolBase* protocol = nullptr;
};
