#include "TableInSite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(HttpTable, SwitchesTheServerOn) {
    EXPECT_FALSE(readWithTable("").site.http);
    const host::LoadedSite loaded = readWithTable("[http]\nlisten = \"127.0.0.1:8080\"\n");
    ASSERT_TRUE(loaded.site.http);
    EXPECT_EQ(toText(loaded.site.http->listen), "127.0.0.1:8080");
    EXPECT_FALSE(loaded.site.http->hasPoints);
    EXPECT_FALSE(loaded.site.http->password);
    EXPECT_FALSE(loaded.site.http->tls);
}

TEST(HttpTable, TakesAllItsKeys) {
    const host::LoadedSite loaded =
        readWithTable("[http]\nlisten = \"0.0.0.0:8443\"\npoints = true\n"
                      "password_file = \"/etc/sbus/http.password\"\n"
                      "certificate = \"/etc/sbus/http.pem\"\nkey_file = \"/etc/sbus/http.key\"\n");
    ASSERT_TRUE(loaded.site.http);
    EXPECT_TRUE(loaded.site.http->hasPoints);
    EXPECT_EQ(loaded.site.http->password->file, "/etc/sbus/http.password");
    EXPECT_EQ(loaded.site.http->tls->certificate, "/etc/sbus/http.pem");
    EXPECT_EQ(loaded.site.http->tls->key.file, "/etc/sbus/http.key");
}

TEST(HttpTable, NeedsAnAddressAndKnowsItsKeys) {
    EXPECT_THAT(findingsOfTable("[http]\nport = 8080\n"),
                ElementsAre(HasSubstr("listen is missing"), HasSubstr("unknown key \"port\"")));
}

TEST(HttpTable, WantsACertificateAndItsKeyTogether) {
    const std::string listen = "[http]\nlisten = \"127.0.0.1:8443\"\n";
    EXPECT_THAT(findingsOfTable(listen + "certificate = \"/c.pem\"\n"),
                ElementsAre(HasSubstr("a certificate without its key; name the key's file in key_file")));
    EXPECT_THAT(findingsOfTable(listen + "key_file = \"/k.pem\"\n"),
                ElementsAre(HasSubstr("a key without its certificate")));
    EXPECT_THAT(findingsOfTable(listen + "certificate = \"c.pem\"\nkey_file = \"/k.pem\"\n"),
                ElementsAre(HasSubstr("certificate \"c.pem\" is no full path")));
}

TEST(HttpTable, WarnsOfAnAddressThatOthersReach) {
    const std::string open = "[http]\nlisten = \"0.0.0.0:8080\"\n";
    const std::string password = "password_file = \"/p\"\n";
    const std::string tls = "certificate = \"/c.pem\"\nkey_file = \"/k.pem\"\n";
    EXPECT_THAT(findingsOfTable(open),
                ElementsAre(HasSubstr("site.toml:9:10: warning: listen \"0.0.0.0:8080\" is open to other "
                                      "computers without a password"),
                            HasSubstr("without TLS")));
    EXPECT_THAT(findingsOfTable(open + password), ElementsAre(HasSubstr("without TLS")));
    EXPECT_THAT(findingsOfTable(open + tls), ElementsAre(HasSubstr("without a password")));
    EXPECT_THAT(findingsOfTable(open + password + tls), IsEmpty());
    EXPECT_THAT(findingsOfTable("[http]\nlisten = \"127.0.0.1:8080\"\n"), IsEmpty());
}
