// Links run lines for days: nothing that they use may grow.

#include "LinkCalls.h"
#include "ProcessFigures.h"
#include "UdpController.h"

#include <HalvexDriverLink/CLinkSerial.h>
#include <HalvexDriverLink/CLinkUdp.h>
#include <PtyPair.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <limits>

namespace {

constexpr int ampleMs = 5000; // for what is certain to come

void expectAnExchange(CLink& link, UdpController& controller) {
    ASSERT_EQ(send(link, hex("01")), 0);
    ASSERT_EQ(toHex(controller.receive()), "01");
    controller.answer(hex("02"));
    ASSERT_EQ(receive(link, 16, ampleMs), came("02"));
}

void expectAnExchange(CLink& link, PtyPair& line) {
    ASSERT_EQ(send(link, hex("01")), 0);
    ASSERT_EQ(toHex(line.read(1)), "01");
    line.write(hex("02"));
    ASSERT_EQ(receive(link, 16, ampleMs), came("02"));
}

// Each turn opens the link, mostly while it is still open.
void expectNoMoreDescriptors(CLink& link) {
    ASSERT_EQ(link.open(), 0);
    const int before = openDescriptors();
    for (int i = 0; i < 2000; ++i) {
        ASSERT_EQ(link.open(), 0);
        if (i % 10 == 0) {
            ASSERT_EQ(receive(link, 16, 0), nothing);
        } else if (i % 4 == 0) {
            link.close();
        }
    }
    EXPECT_EQ(openDescriptors(), before);
}

template <class FarEnd>
void expectNoMoreMemory(CLink& link, FarEnd& farEnd) {
    ASSERT_EQ(link.open(), 0);
    const auto turns = [&](int count) {
        for (int i = 0; i < count; ++i) {
            expectAnExchange(link, farEnd);
            if (i % 10 == 0) {
                ASSERT_EQ(receive(link, 16, 0), nothing);
            }
        }
    };
    turns(10);
    const std::size_t before = allocatedBytes();
    turns(3000);
    EXPECT_LE(allocatedBytes(), before + 3000) << "a byte a turn is a leak";
}

} // namespace

TEST(Resources, DescriptorsDoNotGrowOverOpensAndClosesOfUdp) {
    UdpController controller;
    CLinkUdp link({"127.0.0.1", controller.port()});
    expectNoMoreDescriptors(link);
}

TEST(Resources, DescriptorsDoNotGrowOverOpensAndClosesOfASerialDevice) {
    PtyPair line;
    CLinkSerial link({line.device()});
    expectNoMoreDescriptors(link);
}

TEST(Resources, DescriptorsDoNotGrowOverFailedOpens) {
    CLinkSerial link({"/dev/null"});
    ASSERT_NE(link.open(), 0);
    const int before = openDescriptors();
    for (int i = 0; i < 2000; ++i)
        ASSERT_NE(link.open(), 0);
    EXPECT_EQ(openDescriptors(), before);
}

TEST(Resources, ALinkLeavesNoDescriptorBehind) {
    PtyPair line;
    const int before = openDescriptors();
    for (int i = 0; i < 50; ++i) {
        CLinkSerial link({line.device()});
        ASSERT_EQ(link.open(), 0);
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(Resources, MemoryDoesNotGrowOverExchangesOnUdp) {
    UdpController controller;
    CLinkUdp link({"127.0.0.1", controller.port()});
    expectNoMoreMemory(link, controller);
}

TEST(Resources, MemoryDoesNotGrowOverExchangesOnASerialLine) {
    PtyPair line;
    CLinkSerial link({line.device()});
    expectNoMoreMemory(link, line);
}

TEST(Resources, MoreThan1024DescriptorsInUseStillWork) {
    ASSERT_TRUE(allowDescriptors(2000));
    const TakenDescriptors taken(1100);
    ASSERT_GT(taken.highest(), 1024);

    UdpController controller;
    CLinkUdp udp({"127.0.0.1", controller.port()});
    ASSERT_EQ(udp.open(), 0);
    expectAnExchange(udp, controller);
    EXPECT_EQ(receive(udp, 16, 5), nothing);

    PtyPair line;
    CLinkSerial serial({line.device()});
    ASSERT_EQ(serial.open(), 0);
    expectAnExchange(serial, line);
    EXPECT_EQ(receive(serial, 16, 5), nothing);
}

TEST(Resources, ExhaustedDescriptorsAreAnErrorOfOpenUntilThereAreSomeAgain) {
    UdpController controller;
    PtyPair line;
    CLinkUdp udp({"127.0.0.1", controller.port()});
    CLinkSerial serial({line.device()});
    {
        const TakenDescriptors all(std::numeric_limits<int>::max());
        EXPECT_EQ(udp.open(), EMFILE);
        EXPECT_EQ(serial.open(), EMFILE);
        EXPECT_EQ(send(udp, hex("01")), -1);
    }
    ASSERT_EQ(udp.open(), 0);
    expectAnExchange(udp, controller);
    ASSERT_EQ(serial.open(), 0);
    expectAnExchange(serial, line);
}
