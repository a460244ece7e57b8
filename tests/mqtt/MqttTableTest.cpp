#include "TableInSite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

LoadedSite read(const std::string& mqtt) {
    return readWithTable("[mqtt]\n" + mqtt);
}

std::vector<std::string> findings(const std::string& mqtt) {
    return findingsOfTable("[mqtt]\n" + mqtt);
}

} // namespace

TEST(MqttTable, TakesNoCommandsUnlessItSaysSo) {
    const MqttSettings settings = *read("url = \"mqtt://127.0.0.1\"\n").site.mqtt;
    EXPECT_FALSE(settings.takesCommands);
    EXPECT_EQ(toText(settings.broker), "mqtt://127.0.0.1:1883");
    EXPECT_EQ(settings.prefix, "sbus");
    EXPECT_EQ(settings.qos, 1);
    EXPECT_EQ(settings.version, MqttVersion::V5);
    EXPECT_EQ(settings.layout, MqttLayout::Plain);
    EXPECT_THAT(findings("url = \"mqtt://127.0.0.1\"\n"), IsEmpty());
}

TEST(MqttTable, ReadsEveryKey) {
    const std::string text =
        "url = \"mqtts://broker.plant:9000\"\nprefix = \"plant/north\"\nlayout = \"batch\"\nuser = \"g\"\n"
        "password_file = \"/etc/p\"\nca_file = \"/etc/ca\"\ncertificate = \"/etc/c\"\nkey_file = \"/etc/k\"\n"
        "version = \"3.1.1\"\nclient_id = \"n1\"\nkeep_alive = \"5s\"\nqos = 0\nbacklog = \"1MB\"\n"
        "commands = true\n";
    EXPECT_THAT(findings(text), IsEmpty());
    const MqttSettings settings = *read(text).site.mqtt;
    EXPECT_EQ(toText(settings.broker), "mqtts://broker.plant:9000");
    EXPECT_EQ(settings.prefix, "plant/north");
    EXPECT_EQ(settings.layout, MqttLayout::Batch);
    EXPECT_EQ(settings.user, "g");
    EXPECT_EQ(settings.password->file, "/etc/p");
    EXPECT_EQ(settings.caFile + settings.certificate + settings.keyFile, "/etc/ca/etc/c/etc/k");
    EXPECT_EQ(settings.version, MqttVersion::V311);
    EXPECT_EQ(settings.clientId, "n1");
    EXPECT_EQ(settings.keepAlive.count(), 5);
    EXPECT_EQ(settings.qos, 0);
    EXPECT_EQ(settings.backlogBytes, 1'000'000U);
    EXPECT_TRUE(settings.takesCommands);
}

TEST(MqttTable, TellsWhatIsWrong) {
    EXPECT_THAT(findings("url = \"http://h\"\n"), ElementsAre(HasSubstr("leads to no broker")));
    EXPECT_THAT(findings("prefix = \"a\"\n"), ElementsAre(HasSubstr("url")));
    for (const char* const wrong :
         {"prefix = \"a+b\"", "prefix = \"a//b\"", "prefix = \"\"", "layout = \"x\"", "version = \"4\"",
          "qos = 2", "keep_alive = \"1s\"", "keep_alive = \"20h\"", "backlog = \"1kB\"",
          "password_file = \"/p\"", "certificate = \"/c\"", "ca_file = \"/c\"", "usr = \"x\""})
        EXPECT_FALSE(findings("url = \"mqtt://127.0.0.1\"\n" + std::string(wrong) + "\n").empty()) << wrong;
}

TEST(MqttTable, KnowsSparkplugAndWhoIsWaitedFor) {
    const std::string sparkplug = "url = \"mqtt://127.0.0.1\"\nlayout = \"sparkplug\"\n";
    EXPECT_THAT(findings(sparkplug + "prefix = \"plant\"\nprimary_host = \"scada\"\n"), IsEmpty());
    EXPECT_THAT(findings(sparkplug + "prefix = \"plant/north\"\n"),
                ElementsAre(HasSubstr("is no name for a group of Sparkplug")));
    EXPECT_THAT(findings(sparkplug + "primary_host = \"a/b\"\n"),
                ElementsAre(HasSubstr("is no id of a host")));
    EXPECT_THAT(findings("url = \"mqtt://127.0.0.1\"\nprimary_host = \"scada\"\n"),
                ElementsAre(HasSubstr("primary_host without Sparkplug")));
}

TEST(MqttTable, WarnsOfAPasswordThatOthersCanRead) {
    const std::string user = "user = \"g\"\npassword_env = \"P\"\n";
    EXPECT_THAT(findings("url = \"mqtt://10.0.0.1\"\n" + user),
                ElementsAre(HasSubstr("warning: the password goes to mqtt://10.0.0.1:1883 unencrypted")));
    EXPECT_THAT(findings("url = \"mqtts://10.0.0.1\"\n" + user), IsEmpty());
    EXPECT_THAT(findings("url = \"mqtt://[::1]\"\n" + user), IsEmpty());
    EXPECT_THAT(findings("url = \"mqtt://localhost\"\n" + user), IsEmpty());
}

TEST(MqttTable, WarnsOfCommandsThatAnybodyCanGive) {
    EXPECT_THAT(findings("url = \"mqtt://10.0.0.1\"\ncommands = true\n"),
                ElementsAre(HasSubstr("without TLS"), HasSubstr("asks nobody for a password")));
    EXPECT_THAT(findings("url = \"mqtt://127.0.0.1\"\ncommands = true\n"),
                ElementsAre(HasSubstr("asks nobody for a password")));
    EXPECT_THAT(findings("url = \"mqtts://10.0.0.1\"\ncommands = true\nuser = \"g\"\npassword_env = \"P\"\n"),
                IsEmpty());
}

TEST(BrokerUrl, NamesHostPortAndTls) {
    for (const char* const url :
         {"mqtt://h:1883", "mqtts://h:8883", "mqtt://[::1]:1", "mqtts://10.0.0.1:65535"})
        EXPECT_EQ(toText(parseBrokerUrl(url).value()), url);
    EXPECT_EQ(toText(parseBrokerUrl("mqtts://h/").value()), "mqtts://h:8883");
}

TEST(BrokerUrl, IsNothingElse) {
    for (const char* const url : {"", "h", "tcp://h", "mqtt://", "mqtt://:1", "mqtt://h:0", "mqtt://h:65536",
                                  "mqtt://h:x", "mqtt://u:p@h", "mqtt://h/path", "mqtt://::1", "mqtt://[h]",
                                  "mqtt://[::1", "mqtt://h:", "mqtt://[::1]x"})
        EXPECT_FALSE(parseBrokerUrl(url)) << url;
}
