#pragma once

#include <HalvexDriverComponent/CLogger.h>

#include <QList>
#include <QMutex>
#include <QStringList>

// Remembers every log line and frame trace line written while it lives. Any thread.
class LogRecorder {
public:
    LogRecorder();

    QList<LogLine> lines() const;
    // The texts of one route, in order.
    QStringList texts(LogLine::Route route) const;
    void clear();

private:
    mutable QMutex mutex;
    QList<LogLine> recorded;
    std::unique_ptr<CLogger::Subscription> subscription;
};
