#include "LogRecorder.h"

#include <QMutexLocker>

LogRecorder::LogRecorder()
    : subscription(CLogger::GetInstance()->watchLinesAndFrames([this](const LogLine& line) {
          const QMutexLocker lock(&mutex);
          recorded << line;
      })) {}

QList<LogLine> LogRecorder::lines() const {
    const QMutexLocker lock(&mutex);
    return recorded;
}

QStringList LogRecorder::texts(LogLine::Route route) const {
    QStringList result;
    for (const LogLine& line : lines())
        if (line.route == route)
            result << line.text;
    return result;
}

void LogRecorder::clear() {
    const QMutexLocker lock(&mutex);
    recorded.clear();
}
