#include "Telegram.h"

#include <array>

namespace sim {

namespace {

constexpr std::uint8_t singleAcknowledge = 0x06; // Break Mode answers a write with one byte
constexpr std::uint8_t singleRefusal = 0x15;
constexpr std::size_t ethernetHeaderSize = 9;
constexpr std::uint8_t ethernetVersion = 1;
constexpr std::uint8_t ethernetProtocolType = 0;
constexpr std::size_t smallestBody = 2; // station and command

void appendNumber(Bytes& bytes, std::uint32_t number, unsigned size) {
    for (unsigned shift = size * 8; shift > 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(number >> (shift - 8)));
}

std::uint32_t numberAt(const Bytes& bytes, std::size_t position, unsigned size) {
    std::uint32_t number = 0;
    for (unsigned i = 0; i < size; ++i)
        number = number << 8 | bytes[position + i];
    return number;
}

Bytes bodyOf(const Bytes& telegram, std::size_t startSize) {
    return {telegram.begin() + static_cast<std::ptrdiff_t>(startSize),
            telegram.end() - static_cast<std::ptrdiff_t>(checksumSize)};
}

bool hasRequestHeader(const Bytes& telegram) {
    return numberAt(telegram, 0, 4) == telegram.size() && telegram[4] == ethernetVersion &&
           telegram[5] == ethernetProtocolType &&
           telegram[8] == static_cast<std::uint8_t>(Attribute::Request);
}

bool hasDataModeStart(const Bytes& telegram) {
    return telegram[0] == synchronisation && telegram[1] == static_cast<std::uint8_t>(Attribute::Request);
}

Bytes wrap(Framing framing, std::uint16_t sequence, Attribute attribute, const Bytes& content) {
    Bytes telegram;
    if (framing == Framing::DataMode) {
        telegram = {synchronisation, static_cast<std::uint8_t>(attribute)};
    } else if (framing == Framing::Ethernet) {
        const std::size_t size = ethernetHeaderSize + content.size() + checksumSize;
        appendNumber(telegram, static_cast<std::uint32_t>(size), 4);
        telegram.push_back(ethernetVersion);
        telegram.push_back(ethernetProtocolType);
        appendNumber(telegram, sequence, 2);
        telegram.push_back(static_cast<std::uint8_t>(attribute));
    }
    telegram.insert(telegram.end(), content.begin(), content.end());
    appendChecksum(telegram);
    return telegram;
}

using RemainderTable = std::array<std::uint16_t, 256>;

// What each byte leaves when it is divided by the checksum's polynomial. An answer of 500 bytes is divided in
// 1 us with it, bit by bit in 8.
constexpr RemainderTable remaindersOfBytes() {
    RemainderTable table{};
    for (unsigned byte = 0; byte < table.size(); ++byte) {
        unsigned remainder = byte << 8;
        for (int bit = 0; bit < 8; ++bit)
            remainder = (remainder << 1) ^ ((remainder & 0x8000) != 0 ? 0x1021 : 0);
        table[byte] = static_cast<std::uint16_t>(remainder);
    }
    return table;
}

} // namespace

std::uint16_t checksum(const std::uint8_t* bytes, std::size_t size) {
    static constexpr RemainderTable remainders = remaindersOfBytes();
    unsigned remainder = 0;
    for (std::size_t i = 0; i < size; ++i)
        remainder = ((remainder << 8) & 0xFFFF) ^ remainders[(remainder >> 8) ^ bytes[i]];
    return static_cast<std::uint16_t>(remainder);
}

void appendChecksum(Bytes& telegram) {
    appendNumber(telegram, checksum(telegram.data(), telegram.size()), checksumSize);
}

bool hasValidChecksum(const std::uint8_t* telegram, std::size_t size) {
    // A checksum run over the bytes and their own checksum leaves nothing.
    return size >= checksumSize && checksum(telegram, size) == 0;
}

std::size_t serialStartSize(Framing framing) {
    return framing == Framing::DataMode ? 2 : 0;
}

Unwrapped unwrap(Framing framing, const Bytes& telegram) {
    const bool ethernet = framing == Framing::Ethernet;
    const std::size_t startSize = ethernet ? ethernetHeaderSize : serialStartSize(framing);
    Unwrapped unwrapped;
    if (telegram.size() < startSize + smallestBody + checksumSize)
        return unwrapped;
    if (ethernet && !hasRequestHeader(telegram))
        return unwrapped;
    if (framing == Framing::DataMode && !hasDataModeStart(telegram))
        return unwrapped;
    if (!hasValidChecksum(telegram.data(), telegram.size())) {
        unwrapped.result = Unwrapped::Result::WrongChecksum;
        return unwrapped;
    }
    unwrapped.result = Unwrapped::Result::Good;
    unwrapped.sequence = ethernet ? static_cast<std::uint16_t>(numberAt(telegram, 6, 2)) : std::uint16_t{0};
    unwrapped.body = bodyOf(telegram, startSize);
    return unwrapped;
}

Bytes wrapData(Framing framing, std::uint16_t sequence, const Bytes& payload) {
    return wrap(framing, sequence, Attribute::Response, payload);
}

Bytes wrapAcknowledge(Framing framing, std::uint16_t sequence, std::uint16_t code) {
    if (framing == Framing::BreakMode)
        return {code == positiveAcknowledge ? singleAcknowledge : singleRefusal};
    Bytes content;
    appendNumber(content, code, 2);
    return wrap(framing, sequence, Attribute::Acknowledge, content);
}

} // namespace sim
