#pragma once

#include "Media.h"
#include "Telegram.h"

// The body of a request: station, command and what the command needs. No state, no I/O.
namespace sim {

constexpr int broadcastStation = 255; // every controller obeys, none answers
constexpr std::size_t clockSize = 8;

struct Request {
    int station = 0;
    const Command* command = nullptr; // null: unknown
    bool wellFormed = false;          // the bytes behind the command fit it and each other
    unsigned first = 0;               // first element
    unsigned count = 0;               // elements; for the clock 0
    Bytes data;                       // writes and clock
};

// `body` holds at least station and command.
Request parseRequest(const Bytes& body);

// The size that a body has by its first `available` bytes. While these do not tell yet it is more than
// `available`; without a value the command is unknown, and so is the size.
std::optional<std::size_t> bodySize(const std::uint8_t* body, std::size_t available);

// Elements as they lie in a telegram: bits with the lowest bit of each byte first, words of four bytes.
std::vector<std::uint32_t> unpackElements(Media media, const Bytes& data, unsigned count);
Bytes packElements(Media media, const std::vector<std::uint32_t>& values);

} // namespace sim
