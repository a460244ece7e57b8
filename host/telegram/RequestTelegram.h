#pragma once

#include "Exchange.h"

#include <optional>

namespace host {

// A request telegram taken apart. Its checksum is not looked at: what was sent is told as it stands.
struct RequestTelegram {
    enum class Purpose { Read, Write, SetClock };

    Purpose purpose = Purpose::Read;
    char media = 'R';                 // of the elements read or written: "R" is a register
    unsigned first = 0;               // element
    std::size_t count = 0;            // of elements
    TelegramBytes data;               // what is written: words, bits, or the eight bytes of the clock
    std::optional<unsigned> sequence; // Ethernet; the clock telegram has none there
};

// Nothing when the bytes are no request of a read, a write or the clock.
std::optional<RequestTelegram> readRequest(Framing framing, const TelegramBytes& sent);

// The station that the bytes name. The clock telegram has no header on Ethernet and so names none; that of
// such bytes, and of those that are no telegram, is 0.
unsigned stationOf(Framing framing, const TelegramBytes& sent);

// Whether the bytes have the command code of a write or of the clock.
bool isWriteTelegram(Framing framing, const TelegramBytes& sent);

} // namespace host
