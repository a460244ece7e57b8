#include "PtyPair.h"
#include "site/BaudRate.h"

#include <HalvexDriverLink/CLinkSerial.h>

#include <gtest/gtest.h>

// What is known is what the link opens a device with.
TEST(BaudRate, IsKnownWhenTheLinkTakesIt) {
    for (const unsigned baud : {1U, 50U, 110U, 1200U, 9600U, 9601U, 12'345U, 19'200U, 115'200U, 250'000U,
                                921'600U, 4'000'000U, 5'000'000U}) {
        const PtyPair line;
        CLinkSerial link({line.device(), baud, 8, SerialParity::None, 1});
        EXPECT_EQ(host::isKnownBaudRate(baud), link.open() == 0) << baud;
    }
    EXPECT_TRUE(host::isKnownBaudRate(19'200));
    EXPECT_FALSE(host::isKnownBaudRate(12'345));
    EXPECT_FALSE(host::isKnownBaudRate(0));
}
