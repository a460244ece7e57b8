#pragma once

#include <HalvexDriverComponent/Export.h>

#include <QThread>

#include <atomic>

// A thread that is asked, not made, to end.
class HALVEXDRIVERCOMPONENT_EXPORT CThread : public QThread {
    Q_OBJECT

public:
    explicit CThread(QObject* parent = nullptr);
    ~CThread() override;

    // Any thread.
    virtual void SetShutdown(bool shutdown);
    bool IsShutdown() const { return shutdownFlag.load(std::memory_order_acquire); }

private:
    std::atomic<bool> shutdownFlag{false};
};
