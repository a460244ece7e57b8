#pragma once

#include <cstdint>
#include <vector>

// The three framings around a telegram's body, seen from the controller: requests are unwrapped, answers are
// wrapped. Numbers on the wire are big-endian. No state, no I/O.
namespace sim {

using Bytes = std::vector<std::uint8_t>;

enum class Framing { DataMode, BreakMode, Ethernet };

constexpr std::size_t checksumSize = 2;
constexpr std::uint8_t synchronisation = 0xB5; // opens each Data Mode telegram

// What a telegram is, in Data Mode and on Ethernet.
enum class Attribute : std::uint8_t { Request = 0, Response = 1, Acknowledge = 2 };

// Acknowledge codes. The controller gives no finer reason than "refused".
constexpr std::uint16_t positiveAcknowledge = 0;
constexpr std::uint16_t negativeAcknowledge = 1;

// CRC-16, polynomial 0x1021, start value 0, most significant bit first.
std::uint16_t checksum(const std::uint8_t* bytes, std::size_t size);
// High byte first.
void appendChecksum(Bytes& telegram);
// False below two bytes.
bool hasValidChecksum(const std::uint8_t* telegram, std::size_t size);

// The bytes in front of a serial request's body: two in Data Mode, none in Break Mode.
std::size_t serialStartSize(Framing framing);

struct Unwrapped {
    enum class Result { Good, WrongChecksum, Malformed };
    Result result = Result::Malformed;
    std::uint16_t sequence = 0; // Ethernet only
    Bytes body;                 // station, command, ...; at least two bytes when Good
};

// Takes one whole request telegram apart.
Unwrapped unwrap(Framing framing, const Bytes& telegram);

// The answer to a read.
Bytes wrapData(Framing framing, std::uint16_t sequence, const Bytes& payload);
// The answer to a write, and to any request that is refused. `code` as above.
Bytes wrapAcknowledge(Framing framing, std::uint16_t sequence, std::uint16_t code);

} // namespace sim
