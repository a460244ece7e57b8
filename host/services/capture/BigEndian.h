#pragma once

#include "telegram/Exchange.h"

namespace host {

inline void append16(TelegramBytes& bytes, unsigned value) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    bytes.push_back(static_cast<std::uint8_t>(value));
}

inline void append32(TelegramBytes& bytes, std::uint32_t value) {
    append16(bytes, value >> 16);
    append16(bytes, value & 0xFFFF);
}

inline unsigned read16(const TelegramBytes& bytes, std::size_t place) {
    return static_cast<unsigned>(bytes[place] << 8 | bytes[place + 1]);
}

} // namespace host
