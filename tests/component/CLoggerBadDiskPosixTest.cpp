// Disks that refuse or delay, played by special files of POSIX systems.
#include "LogDirectory.h"

#include <QDir>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <thread>

namespace {

class CLoggerBadDisk : public LogDirectory {
protected:
    std::string logPath() const { return pathOf(QStringLiteral("channel-1.log")).toStdString(); }
};

// The end of a process is tried in a child, which is made before any test has started threads.
class CLoggerBadDiskDeathTest : public CLoggerBadDisk {
protected:
    [[noreturn]] void logAndExit() {
        alarm(10); // seconds; a process that does not end by itself is killed
        configure();
        writeNumbered(5000);
        std::exit(0);
    }
};

} // namespace

TEST_F(CLoggerBadDisk, FullDiskDropsAndCountsEveryLine) {
    std::filesystem::create_symlink("/dev/full", logPath());
    configure();
    writeNumbered(1000);
    ASSERT_TRUE(flush());
    EXPECT_EQ(figures().written, 0U);
    EXPECT_EQ(figures().dropped, 1000U);
}

// The first of them, and the line that tells how often it came again.
TEST_F(CLoggerBadDisk, FullDiskDropsAndCountsWhatRepeats) {
    std::filesystem::create_symlink("/dev/full", logPath());
    configure();
    for (int i = 0; i < 10; ++i)
        write(1, 0, QStringLiteral("the same"));
    ASSERT_TRUE(flush());
    EXPECT_EQ(figures().collapsed, 9U);
    EXPECT_EQ(figures().dropped, 2U);
}

TEST_F(CLoggerBadDisk, FullDiskIsNotReportedOnTheConsole) {
    std::filesystem::create_symlink("/dev/full", logPath());
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    configure();
    writeNumbered(1000);
    ASSERT_TRUE(flush());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(CLoggerBadDisk, FullDiskOfOneChannelLeavesTheOthersAlone) {
    std::filesystem::create_symlink("/dev/full", logPath());
    configure();
    write(1, 0, QStringLiteral("lost"));
    write(2, 0, QStringLiteral("kept"));
    ASSERT_TRUE(flush());
    EXPECT_EQ(lines(QStringLiteral("channel-2.log")), QStringList{QStringLiteral("rtu 0 level 4: kept")});
    EXPECT_EQ(figures().dropped, 1U);
}

TEST_F(CLoggerBadDisk, DirectoryThatCannotBeMadeDropsLines) {
    QFile notADirectory(pathOf(QStringLiteral("file")));
    ASSERT_TRUE(notADirectory.open(QIODevice::WriteOnly));
    settings.directory = (notADirectory.fileName() + QStringLiteral("/logs")).toStdString();
    configure();
    writeNumbered(10);
    ASSERT_TRUE(flush());
    EXPECT_EQ(figures().dropped, 10U);
}

TEST_F(CLoggerBadDisk, WritingGoesOnWhenTheDiskIsThereAgain) {
    std::filesystem::create_symlink("/dev/full", logPath());
    configure();
    write(1, 0, QStringLiteral("lost"));
    ASSERT_TRUE(flush());
    std::filesystem::remove(logPath());
    // A refusing disk is tried again only after a while.
    for (int attempt = 0; figures().written == 0 && attempt < 600; ++attempt) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        write(1, 0, QStringLiteral("attempt %1").arg(attempt));
        ASSERT_TRUE(flush());
    }
    EXPECT_EQ(figures().written, 1U);
    EXPECT_EQ(lines(QStringLiteral("channel-1.log")).size(), 1);
}

TEST_F(CLoggerBadDisk, DiskThatHangsDelaysNobodyAndLosesTheOldestLines) {
    // Opening a pipe waits until somebody reads it.
    ASSERT_EQ(mkfifo(logPath().c_str(), 0600), 0);
    settings.queuedLines = 100;
    configure();
    writeNumbered(5000);
    EXPECT_FALSE(CLogger::GetInstance()->flush(20));
    EXPECT_EQ(figures().written, 0U);
    EXPECT_GE(figures().dropped, 4800U);
    EXPECT_GT(figures().queued, 0U);
    EXPECT_EQ(figures().dropped + figures().queued, 5000U);

    QByteArray arrived;
    std::thread reader([&] {
        QFile pipe(QString::fromStdString(logPath()));
        if (pipe.open(QIODevice::ReadOnly))
            for (QByteArray part = pipe.read(1); !part.isEmpty(); part = pipe.read(1))
                arrived += part;
    });
    EXPECT_TRUE(flush());
    CLogger::GetInstance()->configure({});
    EXPECT_TRUE(flush());
    reader.join();
    EXPECT_TRUE(arrived.contains("line 4999\n"));
    EXPECT_EQ(static_cast<std::uint64_t>(arrived.count('\n')), figures().written);
    EXPECT_EQ(figures().written + figures().dropped, 5000U);
    EXPECT_EQ(figures().queued, 0U);
}

TEST_F(CLoggerBadDiskDeathTest, ProcessExitsWhileTheFileCannotBeOpened) {
    ASSERT_EQ(mkfifo(logPath().c_str(), 0600), 0);
    EXPECT_EXIT(logAndExit(), testing::ExitedWithCode(0), "");
}

TEST_F(CLoggerBadDiskDeathTest, ProcessExitsWhileFilesOfEarlierSettingsCannotBeOpened) {
    ASSERT_EQ(mkfifo(logPath().c_str(), 0600), 0);
    EXPECT_EXIT(
        {
            configure();
            writeNumbered(1);
            logAndExit();
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(CLoggerBadDiskDeathTest, ProcessExitsWhileALineCannotBeWritten) {
    // A pipe that is open at both ends and never read: it takes some 64 KiB, then writing waits.
    ASSERT_EQ(mkfifo(logPath().c_str(), 0600), 0);
    const int pipe = open(logPath().c_str(), O_RDWR);
    ASSERT_GE(pipe, 0);
    EXPECT_EXIT(logAndExit(), testing::ExitedWithCode(0), "");
    close(pipe);
}

TEST_F(CLoggerBadDiskDeathTest, ExitWritesTheLastLinesToADiskThatWorks) {
    // The exit waits for a moment only, in which a busy machine may not get round to the disk.
    for (int attempt = 0; lines(QStringLiteral("channel-1.log")).size() < 5000 && attempt < 20; ++attempt) {
        std::filesystem::remove(logPath());
        EXPECT_EXIT(logAndExit(), testing::ExitedWithCode(0), "");
    }
    EXPECT_EQ(lines(QStringLiteral("channel-1.log")).size(), 5000);
}
