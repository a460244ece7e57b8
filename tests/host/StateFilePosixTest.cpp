#include "services/StateFile.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sys/stat.h>
#include <unistd.h>

using host::StateFile;
using testing::AllOf;
using testing::HasSubstr;

namespace {

mode_t modeOf(const std::string& path) {
    struct stat found {};
    return stat(path.c_str(), &found) == 0 ? found.st_mode & 07777 : 0;
}

class StateFiles : public testing::Test {
protected:
    const QTemporaryDir folder;
    const std::string base = folder.path().toStdString();
    const std::string own = base + "/sbus-host";
};

} // namespace

TEST_F(StateFiles, AreReplacedAndRemoved) {
    StateFile file(base, "state");
    ASSERT_EQ(file.open(), "");
    EXPECT_EQ(file.read().text, "");
    EXPECT_EQ(file.read().fault, "");
    ASSERT_EQ(file.replace("one"), "");
    ASSERT_EQ(file.replace("two"), "");
    EXPECT_EQ(file.read().text, "two");
    ASSERT_EQ(file.replace(""), "");
    EXPECT_FALSE(file.isThere());
    EXPECT_EQ(file.replace(""), "");
}

TEST_F(StateFiles, AreForTheirUserAlone) {
    StateFile file(base + "/new/one", "state");
    ASSERT_EQ(file.open(), "");
    ASSERT_EQ(file.replace("one"), "");
    EXPECT_EQ(modeOf(base + "/new/one/sbus-host"), 0700U);
    EXPECT_EQ(modeOf(file.path()), 0600U);
}

TEST_F(StateFiles, AFolderThatOthersMayEnterIsClosedToThem) {
    ASSERT_EQ(mkdir(own.c_str(), 0777), 0);
    StateFile file(base, "state");
    EXPECT_EQ(file.open(), "");
    EXPECT_EQ(modeOf(own), 0700U);
}

TEST_F(StateFiles, AreNotPutWhereEverybodyMayWrite) {
    for (const mode_t mode : {mode_t{0777}, mode_t{01777}}) {
        ASSERT_EQ(chmod(base.c_str(), mode), 0);
        EXPECT_THAT(StateFile(base, "state").open(), HasSubstr("everybody may write to directory"));
    }
    ASSERT_EQ(chmod(base.c_str(), 0700), 0);
}

// A directory below it may be root's, and belong to whoever can replace it all the same.
TEST_F(StateFiles, AreNotPutBelowADirectoryThatEverybodyCouldReplace) {
    ASSERT_EQ(chmod(base.c_str(), 0777), 0);
    EXPECT_THAT(
        StateFile(base + "/below", "state").open(),
        AllOf(HasSubstr(base + "/below could be led elsewhere"), HasSubstr(base + " can be written to")));
    EXPECT_NE(access((base + "/below").c_str(), F_OK), 0);
    ASSERT_EQ(chmod(base.c_str(), 0700), 0);
}

TEST_F(StateFiles, AFolderIsNotLookedForBehindALink) {
    ASSERT_EQ(mkdir((base + "/other").c_str(), 0700), 0);
    ASSERT_EQ(symlink((base + "/other").c_str(), own.c_str()), 0);
    EXPECT_THAT(StateFile(base, "state").open(), HasSubstr("is no directory"));
}

TEST_F(StateFiles, AreNotReadThroughALinkOrFromAPipe) {
    StateFile file(base, "state");
    ASSERT_EQ(file.open(), "");
    ASSERT_EQ(symlink("/etc/passwd", file.path().c_str()), 0);
    EXPECT_THAT(file.read().fault, HasSubstr("cannot be read"));
    EXPECT_EQ(file.read().text, "");
    ASSERT_EQ(unlink(file.path().c_str()), 0);
    ASSERT_EQ(mkfifo(file.path().c_str(), 0600), 0);
    EXPECT_THAT(file.read().fault, HasSubstr("is no file of this user's"));
    EXPECT_EQ(file.replace("one"), ""); // takes its place
    EXPECT_EQ(file.read().text, "one");
}

TEST_F(StateFiles, BelongToOneProcessUntilItsEnd) {
    auto first = std::make_unique<StateFile>(base, "state");
    ASSERT_EQ(first->open(), "");
    EXPECT_THAT(StateFile(base, "state").open(), HasSubstr("another sbus-host uses"));
    EXPECT_EQ(StateFile(base, "other").open(), "");
    first.reset();
    EXPECT_EQ(StateFile(base, "state").open(), "");
}

TEST_F(StateFiles, ReplaceWhatAKilledWriterHasLeft) {
    StateFile file(base, "state");
    ASSERT_EQ(file.open(), "");
    ASSERT_EQ(file.replace("one"), "");
    QFile half(QString::fromStdString(file.path()) + QStringLiteral(".new"));
    ASSERT_TRUE(half.open(QIODevice::WriteOnly));
    half.write("tw");
    half.close();
    EXPECT_EQ(file.read().text, "one");
    EXPECT_EQ(file.replace("two"), "");
    EXPECT_EQ(file.read().text, "two");
}

TEST_F(StateFiles, TellWhyTheyCannotBeWritten) {
    StateFile file(base, "state");
    ASSERT_EQ(file.open(), "");
    ASSERT_EQ(unlink((file.path() + ".lock").c_str()), 0);
    ASSERT_EQ(rmdir(own.c_str()), 0);
    EXPECT_THAT(file.replace("one"), HasSubstr("cannot be written: No such file or directory"));
}
