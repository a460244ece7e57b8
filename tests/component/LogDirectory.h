#pragma once

#include <HalvexDriverComponent/CLogger.h>

#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// A directory that the logger writes into while a test runs, and the figures since the test began.
class LogDirectory : public testing::Test {
public:
    LogDirectory() : before(CLogger::GetInstance()->figures()) {
        settings.directory = directory.path().toStdString();
    }
    ~LogDirectory() override {
        CLogger::GetInstance()->configure({});
        EXPECT_TRUE(CLogger::GetInstance()->flush(longEnough));
    }

protected:
    static constexpr int longEnough = 60'000; // milliseconds; only a failing test waits for it

    void configure() { CLogger::GetInstance()->configure(settings); }

    static void write(int channelId, int rtuId, const QString& text) {
        CLogger::GetInstance()->writeAll(channelId, rtuId, Halvex::LogLevel::Success, text);
    }
    static void writeNumbered(int count) {
        for (int line = 0; line < count; ++line)
            write(1, 0, QStringLiteral("line %1").arg(line));
    }

    static bool flush() { return CLogger::GetInstance()->flush(longEnough); }

    QString pathOf(const QString& fileName) const { return directory.filePath(fileName); }

    // The lines of a file, without their time stamps.
    QStringList lines(const QString& fileName) const {
        QStringList result;
        for (const QString& line : stampedLines(fileName))
            result << line.mid(stampLength);
        return result;
    }
    QStringList stampedLines(const QString& fileName) const {
        QFile file(pathOf(fileName));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    LoggerFigures figures() const {
        LoggerFigures now = CLogger::GetInstance()->figures();
        now.written -= before.written;
        now.dropped -= before.dropped;
        now.collapsed -= before.collapsed;
        return now;
    }

    static constexpr int stampLength = 30; // "2024-05-01 12:00:00.000+02:00 "
    QTemporaryDir directory;
    LoggerSettings settings;

private:
    const LoggerFigures before;
};
