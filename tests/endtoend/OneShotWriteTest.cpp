#include "oneshot/CommandSender.h"

#include <HalvexDriverLink/CLink.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

// A line that opens each time and takes no byte, as behind a firewall that forbids to send.
class MuteLink : public CLink {
public:
    explicit MuteLink(int& openCount) : opens(openCount) {}

    void reset() override {}
    int open() override {
        ++opens;
        return 0;
    }
    void close() override {}
    int send(const char*, int, int) override { return -1; }
    int receive(char*, int, int&, int) override { return -1; }
    int kind() const override { return udpKind; }

private:
    void wake() override {}

    int& opens;
};

} // namespace

TEST(OneShotWrite, GivesUpALineThatOpensAgainAndAgainWithoutSending) {
    const host::ControllerLine line{host::UdpEnd{"127.0.0.1", 5050}};
    const host::ElementWrite write{{'R', 1}, false, 7};
    const host::Site site = host::makeWriteSite(line, {write});
    int opens = 0;
    host::CommandSender sender(line, site,
                               [&](const host::LinkEnd&) { return std::make_unique<MuteLink>(opens); });
    ASSERT_EQ(sender.open(PLUGIN_FILE), "");
    const host::CommandEnding ending = sender.send(host::SetPoint{0, 7});
    EXPECT_NE(ending.kind, host::CommandEnding::Kind::Done);
    EXPECT_NE(ending.reason, "");
    EXPECT_GT(opens, 1);
}
