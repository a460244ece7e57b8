#include <site/SecretSource.h>
#include <site/TomlTable.h>

#include <gtest/gtest.h>

using namespace host;

namespace {

const std::string file = "site.toml";

std::string reading(const std::string& text) {
    const toml::table source = toml::parse(text);
    Findings findings;
    TomlTable table(source, file, findings);
    const std::optional<SecretSource> secret = readSecretSource(table, "password", findings);
    table.rejectUnknownKeys();
    if (!findings.all().empty())
        return findings.all().front().what;
    return secret ? "file " + secret->file + " variable " + secret->variable : "none";
}

} // namespace

TEST(SecretSource, NamesAFileOrAVariable) {
    EXPECT_EQ(reading(""), "none");
    EXPECT_EQ(reading("password_file = '/etc/sbus/mqtt.password'"), "file /etc/sbus/mqtt.password variable ");
    EXPECT_EQ(reading("password_env = 'MQTT_PASSWORD'"), "file  variable MQTT_PASSWORD");
}

TEST(SecretSource, IsNotTheSecretItself) {
    EXPECT_EQ(reading("password = 'sesame'"), "a password in the site file, which others can read");
    EXPECT_EQ(reading("password = 4711"), "a password in the site file, which others can read");
}

TEST(SecretSource, IsOneOfTheTwo) {
    EXPECT_EQ(reading("password_file = '/a'\npassword_env = 'B'"),
              "password_file and password_env in one table");
}

TEST(SecretSource, IsAFullPath) {
    EXPECT_EQ(reading("password_file = 'mqtt.password'"), "password_file \"mqtt.password\" is no full path");
}
