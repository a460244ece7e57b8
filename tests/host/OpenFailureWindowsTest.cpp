#include "runtime/OpenFailureText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

using host::cannotOpenReason;
using testing::HasSubstr;

// Errors as the system tells them of real devices.
TEST(OpenFailureText, TellsTheSystemsReasonAndWhatToDo) {
    const host::LinkEnd port = host::SerialEnd{"COM5", 12'345};
    const std::string failed = "cannot open serial:COM5?baud=12345&parity=none&stop=1: ";
    EXPECT_EQ(cannotOpenReason(port, ERROR_FILE_NOT_FOUND),
              failed + "there is no device COM5; plug it in, or name the one that is there");
    EXPECT_EQ(cannotOpenReason(port, ERROR_ACCESS_DENIED),
              failed + "another program has COM5 open; end that program, or name another device");
    EXPECT_THAT(cannotOpenReason(port, ERROR_INVALID_PARAMETER),
                HasSubstr("does not do baud=12345&parity=none&stop=1; choose a baud rate that it supports"));
    EXPECT_THAT(cannotOpenReason(port, ERROR_GEN_FAILURE), HasSubstr("(error 31); check the device"));
}

TEST(OpenFailureText, TellsAHostThatIsNotKnown) {
    const host::LinkEnd end = host::UdpEnd{"pump-house.plant", 5050};
    EXPECT_EQ(
        cannotOpenReason(end, WSAEHOSTUNREACH),
        "cannot open udp://pump-house.plant:5050: no address is known for pump-house.plant, or no network "
        "leads there; check the host name and the network");
}

// The ports of a computer are open to all its users: who is kept out came second.
TEST(OpenFailureText, KnowsADeviceThatIsInUse) {
    EXPECT_TRUE(host::isInUse(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(host::isInUse(ERROR_SHARING_VIOLATION));
    EXPECT_FALSE(host::isInUse(ERROR_FILE_NOT_FOUND));
}
