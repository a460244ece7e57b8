#include <HalvexDriverComponent/CThread.h>

#include "NoEvents.h"

CThread::CThread(QObject* parent) : QThread(parent) {}

// One of a thread that never ran; Qt deletes that of a thread that has ended.
CThread::~CThread() {
    delete events;
}

bool CThread::StartThread() {
    if (isRunning())
        return true;
    if (events.isNull()) {
        events = new NoEvents;
        setEventDispatcher(events);
    }
    start();
    return isRunning() || isFinished();
}

void CThread::SetShutdown(bool shutdown) {
    shutdownFlag.store(shutdown, std::memory_order_release);
}
