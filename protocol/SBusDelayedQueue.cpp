#include "SBusDelayedQueue.h"

#include "SBusProtocolBase.h"

#include <QMutexLocker>

#include <algorithm>
#include <utility>

SBusDelayedQueue::SBusDelayedQueue(std::function<int()> timeOfDay, std::function<qint64()> steadyTime)
    : clock(std::move(timeOfDay), std::move(steadyTime)) {}

SBusDelayedQueue::~SBusDelayedQueue() = default;

void SBusDelayedQueue::setProtocol(SBusProtocolBase* newProtocol) {
    const QMutexLocker lock(&mutex);
    protocol = newProtocol;
}

// The clock is read here as well as at each dispatch: a dispatch of an empty queue does not read it, so its
// last reading may be any time ago.
void SBusDelayedQueue::schedule(unsigned delayMs, const SBusRequest& request) {
    const QMutexLocker lock(&mutex);
    readClock();
    entries.append({delayMs, request});
    empty.store(false, std::memory_order_release);
}

void SBusDelayedQueue::dispatchDue() {
    if (empty.load(std::memory_order_acquire))
        return;
    const QMutexLocker lock(&mutex);
    if (entries.isEmpty() || protocol == nullptr)
        return;
    readClock();
    QList<Entry> remaining;
    for (const Entry& entry : std::as_const(entries)) {
        if (entry.remainingMs > 0)
            remaining.append(entry);
        else
            protocol->queueRequest(entry.request);
    }
    entries = remaining;
    empty.store(entries.isEmpty(), std::memory_order_release);
}

void SBusDelayedQueue::readClock() {
    const qint64 passed = clock.passed();
    for (Entry& entry : entries)
        entry.remainingMs -= static_cast<quint32>(std::min<qint64>(passed, entry.remainingMs));
}
