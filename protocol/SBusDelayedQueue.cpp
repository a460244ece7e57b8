#include "SBusDelayedQueue.h"

#include "SBusProtocolBase.h"

#include <QDateTime>
#include <QMutexLocker>
#include <QTime>

#include <utility>

SBusDelayedQueue::SBusDelayedQueue(std::function<int()> elapsed) : clock(std::move(elapsed)) {}

SBusDelayedQueue::~SBusDelayedQueue() = default;

std::function<int()> SBusDelayedQueue::timeOfDayClock() {
    constexpr int dayMs = 24 * 60 * 60 * 1000;
    // By UTC: local time jumps an hour twice a year.
    const auto now = [] { return QDateTime::currentDateTimeUtc().time(); };
    return [now, started = now()] {
        const int passed = started.msecsTo(now());
        return passed < 0 ? passed + dayMs : passed;
    };
}

void SBusDelayedQueue::setProtocol(SBusProtocolBase* newProtocol) {
    const QMutexLocker lock(&mutex);
    protocol = newProtocol;
}

void SBusDelayedQueue::schedule(unsigned delayMs, const SBusRequest& request) {
    const QMutexLocker lock(&mutex);
    entries.append({clock.elapsed() + delayMs, request});
    empty.store(false, std::memory_order_release);
}

void SBusDelayedQueue::dispatchDue() {
    if (empty.load(std::memory_order_acquire))
        return;
    const QMutexLocker lock(&mutex);
    if (entries.isEmpty() || protocol == nullptr)
        return;
    const quint32 now = clock.elapsed();
    QList<Entry> remaining;
    for (const Entry& entry : std::as_const(entries)) {
        if (entry.dueMs > now)
            remaining.append({entry.dueMs - now, entry.request});
        else
            protocol->queueRequest(entry.request);
    }
    // A count of 32 bits comes round after 49 days. Counting anew from each dispatch keeps that moment away
    // from the entries.
    clock.moveOriginBy(now);
    entries = remaining;
    empty.store(entries.isEmpty(), std::memory_order_release);
}
