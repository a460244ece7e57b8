#include <HalvexDriverComponent/CThread.h>

CThread::CThread(QObject* parent) : QThread(parent) {}

CThread::~CThread() = default;

void CThread::SetShutdown(bool shutdown) {
    shutdownFlag.store(shutdown, std::memory_order_release);
}
