#include "TelegramBytes.h"

namespace host {

namespace {

// CRC-16, polynomial 0x1021, start value 0, most significant bit first, nothing inverted.
unsigned remainderOf(const TelegramBytes& bytes) {
    unsigned remainder = 0;
    for (const std::uint8_t byte : bytes) {
        remainder ^= static_cast<unsigned>(byte) << 8;
        for (int bit = 0; bit < 8; ++bit)
            remainder = (remainder << 1 ^ ((remainder & 0x8000) != 0 ? 0x1021U : 0U)) & 0xFFFF;
    }
    return remainder;
}

} // namespace

std::size_t headerSizeOf(Framing framing) {
    switch (framing) {
    case Framing::Ethernet:
        return 9;
    case Framing::DataMode:
        return 2;
    case Framing::BreakMode:
        return 0;
    }
    return 0;
}

unsigned pairAt(const TelegramBytes& bytes, std::size_t place) {
    return static_cast<unsigned>(bytes[place] << 8 | bytes[place + 1]);
}

std::uint32_t wordAt(const TelegramBytes& bytes, std::size_t place) {
    return static_cast<std::uint32_t>(pairAt(bytes, place)) << 16 | pairAt(bytes, place + 2);
}

unsigned sequenceOf(const TelegramBytes& telegram) {
    constexpr std::size_t sequencePlace = 6;
    return pairAt(telegram, sequencePlace);
}

bool endsWithItsChecksum(const TelegramBytes& telegram) {
    // The remainder of bytes and their checksum together is 0.
    return telegram.size() > checksumSize && remainderOf(telegram) == 0;
}

} // namespace host
