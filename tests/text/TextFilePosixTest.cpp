#include "TextFile.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/resource.h>
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

TEST(TextFilePosix, SaysWhyTheSystemDoesNotOpenAFile) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const std::string fault = text::readTextFile("/proc/self/status", 1'000'000).fault;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(fault, "cannot be opened for reading: Too many open files");
}

// The first page of a process's memory is never there.
TEST(TextFilePosix, SaysWhyTheSystemDoesNotReadAFile) {
    EXPECT_EQ(text::readTextFile("/proc/self/mem", 1'000'000).fault,
              "fails while it is read: Input/output error");
}
