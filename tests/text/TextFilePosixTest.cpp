#include "TextFile.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

// To open a pipe that nobody writes waits for ever; to read a device may never end.
TEST(TextFilePosix, RefusesAPipeAndADeviceWithoutOpeningThem) {
    const QTemporaryDir folder;
    const std::string pipe = folder.filePath(QStringLiteral("pipe")).toStdString();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(text::readTextFile(pipe, 10).fault, "is a pipe");
    EXPECT_EQ(text::readTextFile("/dev/zero", 10).fault, "is a device");
}

// The size that the system tells of such a file is none.
TEST(TextFilePosix, ReadsAFileWithoutASize) {
    EXPECT_TRUE(text::readTextFile("/proc/self/status", 1'000'000).contents);
    EXPECT_EQ(text::readTextFile("/proc/self/status", 10).fault, "is larger than 10 bytes");
}
