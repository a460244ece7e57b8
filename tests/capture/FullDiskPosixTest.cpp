// Full disks, played by the means of POSIX systems.
#include "services/capture/CaptureFile.h"

#include "CaptureDirectory.h"
#include "Printers.h"

#include <gmock/gmock.h>

#include <sys/resource.h>

#include <csignal>

using host::CaptureFile;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// The system takes the bytes of a file up to a size and refuses the rest, as a disk does that is filled.
class CaptureOnAFullDisk : public CaptureDirectory {
protected:
    void SetUp() override {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
    }
    void TearDown() override {
        setRoom(before.rlim_cur);
        std::signal(SIGXFSZ, SIG_DFL);
    }

    void setRoom(rlim_t bytesInAFile) const {
        rlimit limit = before;
        limit.rlim_cur = bytesInAFile;
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    void makeRoom() const { setRoom(before.rlim_cur); }

private:
    rlimit before{};
};

} // namespace

TEST_F(CaptureOnAFullDisk, HasNoHalfRecordAndGoesOnBehindTheLastWholeOne) {
    CaptureFile file(options());
    ASSERT_EQ(file.begin(), "");
    ASSERT_EQ(file.write(records(1, 2)), 2U);
    setRoom(headerSize + 2 * recordSize + recordSize / 2);
    EXPECT_EQ(file.write(records(3, 4)), 0U);
    EXPECT_EQ(file.refusal(), "File too large");
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(1, 2));
    EXPECT_EQ(file.write(records(5, 5)), 0U) << "tried again in vain";
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(1, 2));
    makeRoom();
    EXPECT_EQ(file.write(records(6, 7)), 2U);
    EXPECT_EQ(file.write(records(8, 8)), 1U);
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(1, 2, 6, 7, 8));
    EXPECT_EQ(fileNames(), QStringList{"line.pcap"});
}

TEST_F(CaptureOnAFullDisk, StillKeepsToItsSizeAfterwards) {
    CaptureFile file(options(3));
    ASSERT_EQ(file.begin(), "");
    ASSERT_EQ(file.write(records(1, 2)), 2U);
    setRoom(headerSize + 2 * recordSize + 1);
    EXPECT_EQ(file.write(records(3, 3)), 0U);
    makeRoom();
    EXPECT_EQ(file.write(records(4, 5)), 2U);
    EXPECT_THAT(recordsIn("line.1.pcap"), ElementsAre(1, 2, 4));
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(5));
}

TEST_F(CaptureOnAFullDisk, HasNoHalfHeaderInANewFile) {
    CaptureFile file(options(2));
    ASSERT_EQ(file.begin(), "");
    ASSERT_EQ(file.write(records(1, 2)), 2U);
    setRoom(headerSize / 2);
    EXPECT_EQ(file.write(records(3, 3)), 0U);
    EXPECT_EQ(contentOf("line.pcap"), "");
    EXPECT_EQ(file.write(records(4, 4)), 0U);
    makeRoom();
    EXPECT_EQ(file.write(records(5, 5)), 1U);
    EXPECT_THAT(recordsIn("line.1.pcap"), ElementsAre(1, 2));
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(5));
    EXPECT_EQ(fileNames(), (QStringList{"line.1.pcap", "line.pcap"}));
}

TEST_F(CaptureOnAFullDisk, IsNoReasonNotToBegin) {
    setRoom(0);
    CaptureFile file(options());
    EXPECT_EQ(file.begin(), "");
    EXPECT_EQ(file.write(records(1, 1)), 0U);
    makeRoom();
    EXPECT_EQ(file.write(records(2, 2)), 1U);
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(2));
}

// A file that somebody has cut or replaced meanwhile is not written behind.
TEST_F(CaptureOnAFullDisk, BeginsANewFileWhenTheOldOneIsNotAsItWasLeft) {
    CaptureFile file(options());
    ASSERT_EQ(file.begin(), "");
    ASSERT_EQ(file.write(records(1, 2)), 2U);
    setRoom(headerSize + 2 * recordSize);
    EXPECT_EQ(file.write(records(3, 3)), 0U);
    makeRoom();
    ASSERT_TRUE(QFile::resize(pathOf("line.pcap"), headerSize + recordSize));
    EXPECT_EQ(file.write(records(4, 4)), 1U);
    EXPECT_THAT(recordsIn("line.1.pcap"), ElementsAre(1));
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(4));
}

TEST_F(CaptureOnAFullDisk, TellsTheReasonOfTheSystem) {
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/full"), pathOf("line.pcap")));
    CaptureFile file(options());
    EXPECT_EQ(file.write(records(1, 1)), 0U);
    EXPECT_EQ(file.refusal(), "No space left on device");
    ASSERT_TRUE(QFile::remove(pathOf("line.pcap")));
    EXPECT_EQ(file.write(records(2, 2)), 1U);
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(2));
}
