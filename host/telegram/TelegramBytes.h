#pragma once

#include "Exchange.h"

// What requests and answers have in common, byte by byte.
namespace host {

constexpr std::size_t checksumSize = 2;
constexpr std::size_t wordSize = 4;            // of a register, timer or counter
constexpr std::uint8_t synchronisation = 0xB5; // begins each telegram in Data Mode

// Length (4), version, protocol type, sequence number (2) and attribute on Ethernet; synchronisation and
// attribute in Data Mode; nothing in Break Mode.
std::size_t headerSizeOf(Framing framing);

// Most significant byte first. The bytes must be there.
unsigned pairAt(const TelegramBytes& bytes, std::size_t place);
std::uint32_t wordAt(const TelegramBytes& bytes, std::size_t place);

// The sequence number of an Ethernet header, which must be there.
unsigned sequenceOf(const TelegramBytes& telegram);

// Whether the last two bytes are the checksum of those before.
bool endsWithItsChecksum(const TelegramBytes& telegram);

} // namespace host
