#include "LogDirectory.h"
#include "LogRecorder.h"

#include <QDateTime>
#include <QDir>

#include <atomic>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

using CLoggerFiles = LogDirectory;

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

QString file(int channelId) {
    return QStringLiteral("channel-%1.log").arg(channelId);
}

} // namespace

TEST_F(CLoggerFiles, EachChannelHasItsFile) {
    configure();
    write(1, 0, text("Primary channel has connected"));
    CLogger::GetInstance()->writeFile(2, 7, Halvex::LogLevel::CommandFailure, text("Größe"));
    ASSERT_TRUE(flush());
    EXPECT_EQ(lines(file(1)), QStringList{text("rtu 0 level 4: Primary channel has connected")});
    EXPECT_EQ(lines(file(2)), QStringList{text("rtu 7 level 2: Größe")});
    EXPECT_EQ(figures().written, 2U);
}

TEST_F(CLoggerFiles, LinesBeginWithTheTimeTheyWereWritten) {
    configure();
    const QDateTime start = QDateTime::currentDateTime();
    write(1, 0, text("a"));
    ASSERT_TRUE(flush());
    const QString line = stampedLines(file(1)).value(0);
    const QDateTime stamp = QDateTime::fromString(line.left(23), text("yyyy-MM-dd HH:mm:ss.zzz"));
    EXPECT_TRUE(stamp.isValid()) << qPrintable(line);
    EXPECT_GE(stamp, start.addMSecs(-1)); // the two clocks may round differently
    EXPECT_LE(stamp, QDateTime::currentDateTime());
}

// In a zone that is not this computer's own the offset tells which time is meant.
TEST_F(CLoggerFiles, LinesTellTheirZone) {
    configure();
    write(1, 0, text("a"));
    ASSERT_TRUE(flush());
    const QString line = stampedLines(file(1)).value(0);
    const int minutes = QDateTime::currentDateTime().offsetFromUtc() / 60;
    const QString zone = text("%1%2:%3 ")
                             .arg(QLatin1Char(minutes < 0 ? '-' : '+'))
                             .arg(std::abs(minutes) / 60, 2, 10, QLatin1Char('0'))
                             .arg(std::abs(minutes) % 60, 2, 10, QLatin1Char('0'));
    EXPECT_EQ(line.mid(23, 7), zone) << qPrintable(line);
}

TEST_F(CLoggerFiles, RecordsStandAsTheyAreAndWithTheirOwnTime) {
    configure();
    const QDateTime then(QDate(2026, 5, 1), QTime(12, 0, 0, 125));
    const std::chrono::system_clock::time_point time{std::chrono::milliseconds(then.toMSecsSinceEpoch())};
    CLogger::GetInstance()->writeRecord(1, time, "<< read R1");
    CLogger::GetInstance()->writeRecord(0, time, "no answer");
    ASSERT_TRUE(flush());
    EXPECT_EQ(lines(file(1)), QStringList{text("<< read R1")});
    EXPECT_EQ(lines(text("host.log")), QStringList{text("no answer")});
    EXPECT_EQ(stampedLines(text("host.log")).value(0).left(23), text("2026-05-01 12:00:00.125"));
}

TEST_F(CLoggerFiles, NoFileExistsBeforeTheFirstLine) {
    configure();
    ASSERT_TRUE(flush());
    EXPECT_TRUE(QDir(directory.path()).isEmpty());
}

TEST_F(CLoggerFiles, WithoutADirectoryNothingIsWritten) {
    settings.directory.clear();
    configure();
    write(1, 0, text("a"));
    EXPECT_TRUE(flush());
    EXPECT_EQ(figures().written, 0U);
}

TEST_F(CLoggerFiles, FullFileIsRotated) {
    settings.fileBytes = 1000;
    settings.filesPerChannel = 3;
    configure();
    writeNumbered(200);
    ASSERT_TRUE(flush());
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files),
              (QStringList{text("channel-1.1.log"), text("channel-1.2.log"), text("channel-1.log")}));
    for (const QString& name : {text("channel-1.1.log"), text("channel-1.2.log"), text("channel-1.log")})
        EXPECT_LE(QFile(pathOf(name)).size(), 1000);
    EXPECT_EQ(lines(file(1)).last(), text("rtu 0 level 4: line 199"));
    EXPECT_EQ(figures().written, 200U);
}

TEST_F(CLoggerFiles, FrameTraceGoesIntoTheFileWhenAskedFor) {
    settings.traceFrames = true;
    configure();
    CLogger::GetInstance()->writeConPacket(1, 4, Halvex::PacketType::Sent, text("B5 00 "), false);
    ASSERT_TRUE(flush());
    EXPECT_EQ(lines(file(1)), QStringList{text("rtu 4 packet 5: B5 00 ")});
}

TEST_F(CLoggerFiles, FrameTraceStaysOutOfTheFileWhenOnlyWatched) {
    configure();
    const LogRecorder recorder;
    CLogger::GetInstance()->writeConPacket(1, 4, Halvex::PacketType::Sent, text("B5 00 "), false);
    ASSERT_TRUE(flush());
    EXPECT_EQ(recorder.lines().size(), 1);
    EXPECT_EQ(figures().written, 0U);
}

TEST_F(CLoggerFiles, RepeatedLineIsWrittenOnceWithItsCount) {
    configure();
    for (int repeat = 0; repeat < 100; ++repeat)
        write(1, 0, text("Error opening channel"));
    write(1, 0, text("Primary channel has connected"));
    ASSERT_TRUE(flush());
    EXPECT_EQ(lines(file(1)), (QStringList{text("rtu 0 level 4: Error opening channel"),
                                           text("rtu 0 level 4: Error opening channel (repeated 99 times)"),
                                           text("rtu 0 level 4: Primary channel has connected")}));
    EXPECT_EQ(figures().written, 2U);
    EXPECT_EQ(figures().collapsed, 99U);
}

TEST_F(CLoggerFiles, FlushWritesAnOpenCount) {
    configure();
    for (int repeat = 0; repeat < 3; ++repeat)
        write(1, 0, text("a"));
    ASSERT_TRUE(flush());
    EXPECT_EQ(lines(file(1)).last(), text("rtu 0 level 4: a (repeated 2 times)"));
}

TEST_F(CLoggerFiles, SameTextOfAnotherRtuLevelOrChannelIsNoRepeat) {
    configure();
    write(1, 1, text("a"));
    write(1, 2, text("a"));
    write(2, 1, text("a"));
    CLogger::GetInstance()->writeAll(1, 1, Halvex::LogLevel::LinkFailure, text("a"));
    ASSERT_TRUE(flush());
    EXPECT_EQ(figures().written, 4U);
    EXPECT_EQ(figures().collapsed, 0U);
}

TEST_F(CLoggerFiles, WatchersSeeEveryRepeat) {
    configure();
    const LogRecorder recorder;
    for (int repeat = 0; repeat < 5; ++repeat)
        write(1, 0, text("a"));
    EXPECT_EQ(recorder.lines().size(), 5);
}

TEST_F(CLoggerFiles, LinesWrittenBeforeNewSettingsGoToTheOldDirectory) {
    const QTemporaryDir other;
    configure();
    writeNumbered(500);
    settings.directory = other.path().toStdString();
    configure();
    write(1, 0, text("new"));
    ASSERT_TRUE(flush());
    EXPECT_EQ(lines(file(1)).size(), 500);
    QFile newFile(other.filePath(file(1)));
    ASSERT_TRUE(newFile.open(QIODevice::ReadOnly));
    EXPECT_TRUE(newFile.readAll().endsWith("rtu 0 level 4: new\n"));
    EXPECT_EQ(figures().written, 501U);
}

TEST_F(CLoggerFiles, SettingsMayChangeWhileChannelsWrite) {
    std::atomic<bool> ended{false};
    std::atomic<std::uint64_t> posted{0};
    std::vector<std::thread> writers;
    configure();
    for (int channel = 1; channel <= 3; ++channel)
        writers.emplace_back([&, channel] {
            for (int line = 0; !ended; ++line, ++posted)
                write(channel, 0, QString::number(line));
        });
    for (int round = 0; round < 20; ++round) {
        settings.queuedLines = round % 2 ? 8192 : 16;
        configure();
        CLogger::GetInstance()->figures();
    }
    ended = true;
    for (std::thread& writer : writers)
        writer.join();
    ASSERT_TRUE(flush());
    EXPECT_EQ(figures().written + figures().dropped, posted);
}
