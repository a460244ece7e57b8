#pragma once

#include <QAbstractEventDispatcher>

// The event dispatcher of a thread that runs a loop of its own and never looks at Qt's events. Qt would give
// the thread one that takes a descriptor, and would end the program when there is none left.
class NoEvents : public QAbstractEventDispatcher {
public:
    bool processEvents(QEventLoop::ProcessEventsFlags) override { return false; }
    bool hasPendingEvents() override { return false; }
    void registerSocketNotifier(QSocketNotifier*) override {}
    void unregisterSocketNotifier(QSocketNotifier*) override {}
    void registerTimer(int, int, Qt::TimerType, QObject*) override {}
    bool unregisterTimer(int) override { return false; }
    bool unregisterTimers(QObject*) override { return false; }
    QList<TimerInfo> registeredTimers(QObject*) const override { return {}; }
    int remainingTime(int) override { return -1; }
#ifdef Q_OS_WIN
    bool registerEventNotifier(QWinEventNotifier*) override {
        return false;
    }
    void unregisterEventNotifier(QWinEventNotifier*) override {}
#endif
    void wakeUp() override {}
    void interrupt() override {}
    void flush() override {}
};
