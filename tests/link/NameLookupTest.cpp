// A name server that does not answer. The system's getaddrinfo() is replaced by one that the test holds up.

#include "LinkCalls.h"
#include "UdpController.h"

#include <HalvexDriverLink/CLinkUdp.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <thread>

#include <dlfcn.h>
#include <netdb.h>

using std::chrono::milliseconds;

namespace {

std::atomic<bool> heldUp{false};
std::atomic<int> lookups{0};

class NameLookup : public testing::Test {
protected:
    void SetUp() override {
        heldUp = true;
        lookups = 0;
    }

    void TearDown() override { heldUp = false; }

    UdpController controller;
    CLinkUdp link{{"localhost", controller.port()}};
};

} // namespace

extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* name, const char* service,
                                                                  const addrinfo* hints, addrinfo** found) {
    ++lookups;
    while (heldUp)
        std::this_thread::sleep_for(milliseconds(1));
    return reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"))(name, service, hints,
                                                                                     found);
}

TEST_F(NameLookup, IsEndedByInterrupt) {
    std::thread other([this] {
        std::this_thread::sleep_for(milliseconds(50));
        link.interrupt();
    });
    EXPECT_EQ(link.open(), ECANCELED);
    other.join();
}

TEST_F(NameLookup, IsEndedByCloseFromAnotherThread) {
    std::atomic<bool> ended{false};
    std::thread other([this, &ended] {
        while (!ended)
            link.close();
    });
    EXPECT_EQ(link.open(), ECANCELED);
    ended = true;
    other.join();
}

TEST_F(NameLookup, ThatWasLeftBehindIsWaitedForByTheNextOpen) {
    link.interrupt();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(link.open(), ECANCELED);
    heldUp = false;
    link.reset();
    ASSERT_EQ(link.open(), 0);
    EXPECT_EQ(lookups, 1);
    EXPECT_EQ(send(link, hex("01")), 0);
    EXPECT_EQ(toHex(controller.receive()), "01");
}

TEST_F(NameLookup, IsMadeAnewForEachOpen) {
    heldUp = false;
    ASSERT_EQ(link.open(), 0);
    ASSERT_EQ(link.open(), 0);
    EXPECT_EQ(lookups, 2);
}

TEST_F(NameLookup, IsNotNeededForAnAddress) {
    CLinkUdp addressed({"127.0.0.1", controller.port()});
    EXPECT_EQ(addressed.open(), 0);
    EXPECT_EQ(lookups, 0);
}
