#pragma once

// The numbers that host and drivers exchange.
namespace Halvex {

// The line types that the host's configuration knows, as far as the drivers here serve them.
enum class CommTypeCode : int { SBusSerial = 94021, SBusEthernet = 94022 };

// How a command ended. The values are the host's own and appear in its logs.
enum class DriverErrorResult : int {
    Success = 0,
    NotSupported = 10000,
    BadData = 10001,
    ChannelError = 10002, // also: channel not connected
    TimeOut = 10003,
    RtuNotFound = 10006,
    PointNotFound = 10007,
    UnsupportedAddress = 10008,
};

enum class LogLevel : int {
    CommandFailure = 2,
    Success = 4,
    RequestFailure = 8,
    LinkFailure = 16,
};

// What a line of the frame trace is.
enum class PacketType : int { ProtocolError = 2, Received = 4, Sent = 5 };

// The kinds of poll that the host asks an RTU for.
enum class PollKind : int { Integrity = 0, Status = 1, Analog = 2 };

// How the bits of an analog point's element are to be read. Any other code reads as an integer.
enum class PointDataType : unsigned { Integer = 0, Float = 14 };

} // namespace Halvex
