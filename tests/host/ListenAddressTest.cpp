#include <site/ListenAddress.h>
#include <site/SiteFile.h>

#include <gtest/gtest.h>

using namespace host;

namespace {

std::string parsed(const std::string& text) {
    const std::optional<ListenAddress> address = parseListenAddress(text);
    return address ? toText(*address) : "none";
}

} // namespace

TEST(ListenAddress, IsAnAddressInNumbersAndAPort) {
    EXPECT_EQ(parsed("127.0.0.1:1502"), "127.0.0.1:1502");
    EXPECT_EQ(parsed("0.0.0.0:0"), "0.0.0.0:0");
    EXPECT_EQ(parsed("[::1]:65535"), "[::1]:65535");
}

TEST(ListenAddress, IsNothingElse) {
    for (const char* const text :
         {"", "1502", ":1502", "127.0.0.1", "127.0.0.1:", "127.0.0.1:65536", "127.0.0.1:-1", "127.0.0.1: 1",
          "127.0.0.1:1x", "localhost:1502", "::1:1502", "[::1]", "[]:1", "[127.0.0.1]:1502", "127.0.0.300:1"})
        EXPECT_EQ(parsed(text), "none") << text;
}

TEST(ListenAddress, IsLoopbackWhereThisComputerAloneCanConnect) {
    EXPECT_TRUE(parseListenAddress("127.0.0.1:1")->isLoopback());
    EXPECT_TRUE(parseListenAddress("127.8.9.10:1")->isLoopback());
    EXPECT_TRUE(parseListenAddress("[::1]:1")->isLoopback());
    EXPECT_FALSE(parseListenAddress("0.0.0.0:1")->isLoopback());
    EXPECT_FALSE(parseListenAddress("[::]:1")->isLoopback());
    EXPECT_FALSE(parseListenAddress("192.168.10.5:1")->isLoopback());
}
