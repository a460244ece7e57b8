#include "site/SiteFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

using host::ControlAccess;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const std::string line = "[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://h:5050\"\n"
                         "[[channel.rtu]]\nid = 1\nstation = 5\n";

#ifdef _WIN32
const std::string socketPath = R"(\\.\pipe\works)";
#else
const std::string socketPath = "/run/sbus/site.sock";
#endif

host::LoadedSite read(const std::string& control) {
    return host::readSite(line + control, "site.toml", [](const std::string&) { return text::FileText(); });
}

// Without those about the line.
std::vector<std::string> findings(const std::string& control) {
    const host::LoadedSite loaded = read(control);
    std::vector<std::string> texts;
    for (const host::Finding& finding : loaded.findings.all())
        if (finding.place.line > 7)
            texts.push_back(toText(finding));
    return texts;
}

} // namespace

TEST(ControlTable, OpensTheSocketToNobodyWhenItIsLeftOut) {
    const host::ControlSettings settings = read("").site.control;
    EXPECT_EQ(settings.socket, "");
    EXPECT_EQ(settings.group, "");
    EXPECT_EQ(settings.access, ControlAccess::Read);
}

TEST(ControlTable, NamesSocketGroupAndAccess) {
    const std::string control =
        "[control]\nsocket = '" + socketPath + "'\ngroup = \"scada\"\naccess = \"commands\"\n";
    const host::ControlSettings settings = read(control).site.control;
    EXPECT_EQ(settings.socket, socketPath);
    EXPECT_EQ(settings.group, "scada");
    EXPECT_EQ(settings.access, ControlAccess::Commands);
    EXPECT_EQ(settings.groupPlace.line, 10U);
    EXPECT_THAT(findings(control), IsEmpty());
}

TEST(ControlTable, LetsAGroupReadAloneUnlessItSaysMore) {
    EXPECT_EQ(read("[control]\ngroup = \"scada\"\n").site.control.access, ControlAccess::Read);
    EXPECT_EQ(read("[control]\ngroup = \"scada\"\naccess = \"read\"\n").site.control.access,
              ControlAccess::Read);
}

TEST(ControlTable, TellsWhatIsWrong) {
    EXPECT_THAT(findings("[control]\nsocket = \"site.sock\"\naccess = \"write\"\ngrup = \"scada\"\n"),
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
