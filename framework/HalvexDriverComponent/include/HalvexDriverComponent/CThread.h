#pragma once

#include <HalvexDriverComponent/Export.h>

#include <QPointer>
#include <QThread>

#include <atomic>

class QAbstractEventDispatcher;

// A thread that is asked, not made, to end. It runs a loop of its own: Qt's events and timers do not reach
// it.
class HALVEXDRIVERCOMPONENT_EXPORT CThread : public QThread {
    Q_OBJECT

public:
    explicit CThread(QObject* parent = nullptr);
    ~CThread() override;

    // Whether it runs now: false when the system has no thread to give. Host's thread.
    bool StartThread();
    // Any thread.
    virtual void SetShutdown(bool shutdown);
    bool IsShutdown() const { return shutdownFlag.load(std::memory_order_acquire); }

private:
    QPointer<QAbstractEventDispatcher> events;
    std::atomic<bool> shutdownFlag{false};
};
