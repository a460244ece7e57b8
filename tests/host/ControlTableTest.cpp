#include "TableInSite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

using host::ControlAccess;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

#ifdef _WIN32
const std::string socketPath = R"(\\.\pipe\works)";
#else
const std::string socketPath = "/run/sbus/site.sock";
#endif

} // namespace

TEST(ControlTable, OpensTheSocketToNobodyWhenItIsLeftOut) {
    const host::ControlSettings settings = readWithTable("").site.control;
    EXPECT_EQ(settings.socket, "");
    EXPECT_EQ(settings.group, "");
    EXPECT_EQ(settings.access, ControlAccess::Read);
}

TEST(ControlTable, NamesSocketGroupAndAccess) {
    const std::string control =
        "[control]\nsocket = '" + socketPath + "'\ngroup = \"scada\"\naccess = \"commands\"\n";
    const host::ControlSettings settings = readWithTable(control).site.control;
    EXPECT_EQ(settings.socket, socketPath);
    EXPECT_EQ(settings.group, "scada");
    EXPECT_EQ(settings.access, ControlAccess::Commands);
    EXPECT_EQ(settings.groupPlace.line, 10U);
    EXPECT_THAT(findingsOfTable(control), IsEmpty());
}

TEST(ControlTable, LetsAGroupReadAloneUnlessItSaysMore) {
    EXPECT_EQ(readWithTable("[control]\ngroup = \"scada\"\n").site.control.access, ControlAccess::Read);
    EXPECT_EQ(readWithTable("[control]\ngroup = \"scada\"\naccess = \"read\"\n").site.control.access,
              ControlAccess::Read);
}

TEST(ControlTable, TellsWhatIsWrong) {
    EXPECT_THAT(findingsOfTable("[control]\nsocket = \"site.sock\"\naccess = \"write\"\ngrup = \"scada\"\n"),
                ElementsAre(HasSubstr("9:10: error: socket \"site.sock\" is no full path"),
                            HasSubstr("10:10: error: access \"write\" is not known"),
                            HasSubstr("10:10: error: access without a group"), HasSubstr("grup")));
}

TEST(ControlTable, IsReadAloneByAClient) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("site.toml")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[control]\nsocket = \"/run/sbus/site.sock\"\n[[channel]]\nid = \"no number\"\n");
    file.close();
    EXPECT_EQ(host::loadControlSettings(file.fileName().toStdString()).socket, "/run/sbus/site.sock");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("[control\n");
    file.close();
    EXPECT_EQ(host::loadControlSettings(file.fileName().toStdString()).socket, "");
    EXPECT_EQ(host::loadControlSettings("/no/such.toml").socket, "");
}
