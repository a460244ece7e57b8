#include "runtime/OpenFailureText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <system_error>

using host::cannotOpenReason;
using testing::HasSubstr;

// Errors as the system tells them of real devices.
TEST(OpenFailureText, TellsTheSystemsReasonAndWhatToDo) {
    const host::LinkEnd usb = host::SerialEnd{"/dev/no-such-device", 12'345};
    const auto reason = [&usb](std::errc error) { return cannotOpenReason(usb, static_cast<int>(error)); };
    const std::string failed = "cannot open serial:/dev/no-such-device?baud=12345&parity=none&stop=1: ";
    EXPECT_EQ(reason(std::errc::no_such_file_or_directory),
              failed + "there is no device /dev/no-such-device; plug it in, or name the one that is there");
    EXPECT_EQ(reason(std::errc::device_or_resource_busy),
              failed +
                  "another program has /dev/no-such-device open; end that program, or name another device");
    EXPECT_THAT(reason(std::errc::permission_denied),
                HasSubstr(": this user may not open /dev/no-such-device"));
    EXPECT_THAT(reason(std::errc::invalid_argument),
                HasSubstr("does not do baud=12345&parity=none&stop=1; choose a baud rate that it supports"));
    EXPECT_THAT(reason(std::errc::inappropriate_io_control_operation), HasSubstr("is no serial device"));
    EXPECT_THAT(
        reason(std::errc::too_many_files_open),
        HasSubstr("(error " + std::to_string(static_cast<int>(std::errc::too_many_files_open)) + ")"));
}

TEST(OpenFailureText, TellsAHostThatIsNotKnown) {
    const host::LinkEnd end = host::UdpEnd{"pump-house.plant", 5050};
    EXPECT_EQ(
        cannotOpenReason(end, static_cast<int>(std::errc::host_unreachable)),
        "cannot open udp://pump-house.plant:5050: no address is known for pump-house.plant, or no network "
        "leads there; check the host name and the network");
}

TEST(OpenFailureText, KnowsADeviceThatIsInUse) {
    EXPECT_TRUE(host::isInUse(static_cast<int>(std::errc::device_or_resource_busy)));
    EXPECT_FALSE(host::isInUse(static_cast<int>(std::errc::no_such_device)));
}
