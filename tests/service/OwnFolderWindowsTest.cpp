#include "runtime/OwnFolderWindows.h"
#include "services/StateFile.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::makeOwnFolder;
using host::StateFile;
using testing::HasSubstr;

namespace {

class OwnFolder : public testing::Test {
protected:
    std::string in(const char* name) const {
        return folder.filePath(QString::fromLatin1(name)).toStdString();
    }

    const QTemporaryDir folder;
};

} // namespace

TEST_F(OwnFolder, IsMadeOnceAndFoundAgain) {
    EXPECT_EQ(makeOwnFolder(in("state")), "");
    EXPECT_TRUE(QFileInfo(QString::fromStdString(in("state"))).isDir());
    EXPECT_EQ(makeOwnFolder(in("state")), "");
}

TEST_F(OwnFolder, IsNoFile) {
    QFile file(QString::fromStdString(in("state")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_THAT(makeOwnFolder(in("state")), HasSubstr("is no directory"));
}

TEST_F(OwnFolder, NeedsTheFolderAroundIt) {
    EXPECT_THAT(makeOwnFolder(in("no/state")), HasSubstr("cannot be made"));
}

TEST_F(OwnFolder, HoldsAStateFileOfOneHostAtATime) {
    StateFile second(in("base"), "pulses.json");
    {
        StateFile first(in("base"), "pulses.json");
        ASSERT_EQ(first.open(), "");
        EXPECT_EQ(first.replace("{}"), "");
        EXPECT_THAT(second.open(), HasSubstr("another sbus-host uses"));
    }
    EXPECT_EQ(second.open(), "");
    EXPECT_EQ(second.read().text, "{}");
}
