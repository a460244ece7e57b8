#pragma once

#include <HalvexDriverComponent/Halvex.h>

// What the RTU's entries return to the host.
namespace sbus::result {

constexpr int success = static_cast<int>(Halvex::DriverErrorResult::Success);
constexpr int notSupported = static_cast<int>(Halvex::DriverErrorResult::NotSupported);
constexpr int channelError = static_cast<int>(Halvex::DriverErrorResult::ChannelError);
constexpr int pointNotFound = static_cast<int>(Halvex::DriverErrorResult::PointNotFound);
constexpr int unsupportedAddress = static_cast<int>(Halvex::DriverErrorResult::UnsupportedAddress);

} // namespace sbus::result
