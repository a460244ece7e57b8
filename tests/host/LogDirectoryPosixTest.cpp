#include "SecondUserPosix.h"
#include "services/log/LogDirectory.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

using host::prepareLogDirectory;
using testing::AllOf;
using testing::HasSubstr;

namespace {

namespace files = std::filesystem;

// What belongs to the second user belongs to it in truth where this process is root; elsewhere it is this
// user's, and the directory is prepared for another.
class LogDirectory : public testing::Test {
protected:
    std::string prepare(const std::string& path) const {
        return prepareLogDirectory(path, seconduser::firstUser());
    }
    std::string folder(const char* name) const {
        const std::string path = inRoot(name);
        EXPECT_EQ(mkdir(path.c_str(), 0755), 0);
        return path;
    }
    std::string inRoot(const char* name) const {
        return (files::path(root.path().toStdString()) / name).string();
    }
    void giveAway(const std::string& path) const {
        const uid_t user = seconduser::isReal() ? seconduser::id : getuid();
        EXPECT_EQ(lchown(path.c_str(), user, static_cast<gid_t>(-1)), 0);
    }
    // Of this process's user, as the first user sees it.
    std::string prepareAsOwner(const std::string& path) const { return prepareLogDirectory(path); }

    const QTemporaryDir root;
};

} // namespace

TEST_F(LogDirectory, IsMadeForItsUserToWriteToAlone) {
    const mode_t before = umask(0);
    const std::string path = inRoot("a/b");
    EXPECT_EQ(prepareAsOwner(path), "");
    umask(before);
    struct stat found {};
    ASSERT_EQ(stat(path.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 022U, 0U);
    EXPECT_EQ(prepareAsOwner(path), ""); // and taken the next time, so that "a" is closed, too
}

TEST_F(LogDirectory, IsRefusedWhenOthersMayWriteToIt) {
    const std::string path = folder("open");
    for (const mode_t mode : {0777U, 01777U, 0775U}) {
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        EXPECT_THAT(
            prepareAsOwner(path),
            AllOf(HasSubstr(path), HasSubstr("can be written to by other users"), HasSubstr("chmod go-w")));
    }
}

TEST_F(LogDirectory, IsRefusedWhenItIsAnotherUsers) {
    const std::string path = folder("its");
    giveAway(path);
    EXPECT_THAT(prepare(path), AllOf(HasSubstr(path), HasSubstr("another user")));
}

TEST_F(LogDirectory, IsRefusedWhenAnotherUserHasLinkedItToOneOfThisUsers) {
    const std::string link = inRoot("link");
    files::create_directory_symlink(folder("mine"), link);
    giveAway(link);
    for (const std::string& name : {link, link + "/"})
        EXPECT_THAT(prepare(name), HasSubstr("is a symbolic link of another user"));
}

TEST_F(LogDirectory, IsRefusedWhenAnotherUserHasLinkedAnythingOnTheWayToIt) {
    const std::string mine = folder("mine");
    const std::string link = inRoot("link");
    files::create_directory_symlink(mine, link);
    giveAway(link);
    files::create_directory_symlink("link/deep", inRoot("indirect"));
    for (const std::string& name :
         {link + "/deep/er", link + "/.", link + "/../mine", inRoot("indirect/new")})
        EXPECT_THAT(
            prepare(name),
            HasSubstr(seconduser::isReal() ? link + " is a symbolic link of another user" : "another user"))
            << name;
    EXPECT_TRUE(files::is_empty(mine));
}

TEST_F(LogDirectory, IsRefusedWhenOthersCouldReplaceADirectoryOnTheWayToIt) {
    const std::string path = folder("way") + "/logs";
    ASSERT_EQ(chmod(inRoot("way").c_str(), 0777), 0);
    EXPECT_THAT(prepareAsOwner(path), AllOf(HasSubstr(path), HasSubstr(inRoot("way") + " can be written to"),
                                            HasSubstr("chmod o-w")));
    EXPECT_FALSE(files::exists(path));
    ASSERT_EQ(chmod(inRoot("way").c_str(), 0755), 0);
    giveAway(inRoot("way"));
    EXPECT_THAT(prepare(path), HasSubstr("is a directory of another user"));
}

// As /tmp is, where nobody can replace what is not theirs; and /var/log on some systems.
TEST_F(LogDirectory, MayLieBelowADirectoryThatIsSharedInOrder) {
    const std::string shared = folder("shared");
    for (const mode_t mode : {01777U, 0775U}) {
        ASSERT_EQ(chmod(shared.c_str(), mode), 0);
        EXPECT_EQ(prepareAsOwner(shared + "/logs"), "");
    }
}

TEST_F(LogDirectory, IsRefusedWhenAnotherUserHasLinkedALogFile) {
    const std::string path = folder("mine");
    const std::string link = path + "/channel-1.log";
    files::create_symlink("/etc/passwd", link);
    giveAway(link);
    const std::string fault = seconduser::isReal() ? prepare(path) : prepareLogDirectory(path, getuid() + 1);
    EXPECT_THAT(fault, AllOf(HasSubstr(path), HasSubstr("another user")));
    EXPECT_EQ(prepareAsOwner(path).empty(), !seconduser::isReal());
}

TEST_F(LogDirectory, MayHoldLinksOfItsOwnUser) {
    const std::string path = folder("mine");
    files::create_symlink("/dev/full", path + "/channel-1.log");
    files::create_directory_symlink(path, inRoot("link"));
    EXPECT_EQ(prepareAsOwner(inRoot("link")), "");
    EXPECT_EQ(prepareAsOwner(inRoot("link/../link/new/")), "");
    files::create_directory_symlink("self", inRoot("self"));
    EXPECT_THAT(prepareAsOwner(inRoot("self/logs")), HasSubstr("cannot be made"));
}
