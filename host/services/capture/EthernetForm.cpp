#include "EthernetForm.h"

#include "BigEndian.h"

namespace host {

namespace {

enum Attribute : std::uint8_t { Request = 0, Response = 1, Acknowledge = 2 };

constexpr std::size_t checksumSize = 2;

// CRC-16 with polynomial 0x1021, start value 0, most significant bit first.
unsigned checksumOf(TelegramBytes::const_iterator from, TelegramBytes::const_iterator to) {
    unsigned crc = 0;
    for (; from != to; ++from) {
        crc ^= static_cast<unsigned>(*from) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000) != 0 ? (crc << 1 ^ 0x1021) & 0xFFFF : crc << 1;
    }
    return crc;
}

bool endsInItsChecksum(const TelegramBytes& telegram) {
    return telegram.size() > checksumSize && checksumOf(telegram.begin(), telegram.end() - checksumSize) ==
                                                 read16(telegram, telegram.size() - checksumSize);
}

// What the telegram holds between `start` and its checksum.
TelegramBytes bodyFrom(const TelegramBytes& telegram, std::size_t start) {
    return {telegram.begin() + static_cast<std::ptrdiff_t>(start), telegram.end() - checksumSize};
}

TelegramBytes ethernetTelegram(std::uint16_t sequence, Attribute attribute, const TelegramBytes& body) {
    constexpr std::size_t headerSize = 9;
    constexpr std::uint8_t version = 1;
    constexpr std::uint8_t type = 0;
    TelegramBytes telegram;
    append32(telegram, static_cast<std::uint32_t>(headerSize + body.size() + checksumSize));
    telegram.push_back(version);
    telegram.push_back(type);
    append16(telegram, sequence);
    telegram.push_back(attribute);
    telegram.insert(telegram.end(), body.begin(), body.end());
    append16(telegram, checksumOf(telegram.begin(), telegram.end()));
    return telegram;
}

// Begins with the synchronisation byte and ends in its checksum, with something between attribute and
// checksum.
bool isDataMode(const TelegramBytes& telegram) {
    constexpr std::uint8_t synchronisation = 0xB5;
    constexpr std::size_t startSize = 2;
    return telegram.size() > startSize + checksumSize && telegram[0] == synchronisation &&
           endsInItsChecksum(telegram);
}

std::optional<TelegramBytes> dataModeAnswer(const TelegramBytes& telegram, std::uint16_t sequence) {
    constexpr std::size_t acknowledgeSize = 6;
    if (!isDataMode(telegram))
        return std::nullopt;
    if (telegram[1] == Response)
        return ethernetTelegram(sequence, Response, bodyFrom(telegram, 2));
    if (telegram[1] == Acknowledge && telegram.size() == acknowledgeSize)
        return ethernetTelegram(sequence, Acknowledge, bodyFrom(telegram, 2));
    return std::nullopt;
}

std::optional<TelegramBytes> breakModeAnswer(const TelegramBytes& telegram, std::uint16_t sequence) {
    const TelegramBytes done{0x06};
    const TelegramBytes refused{0x15};
    if (telegram == done)
        return ethernetTelegram(sequence, Acknowledge, {0, 0});
    if (telegram == refused)
        return ethernetTelegram(sequence, Acknowledge, {0, 1});
    if (endsInItsChecksum(telegram))
        return ethernetTelegram(sequence, Response, bodyFrom(telegram, 0));
    return std::nullopt;
}

} // namespace

std::optional<TelegramBytes> requestAsEthernet(const TelegramBytes& telegram, Framing framing,
                                               std::uint16_t sequence) {
    if (framing == Framing::DataMode && isDataMode(telegram) && telegram[1] == Request)
        return ethernetTelegram(sequence, Request, bodyFrom(telegram, 2));
    if (framing == Framing::BreakMode && endsInItsChecksum(telegram))
        return ethernetTelegram(sequence, Request, bodyFrom(telegram, 0));
    return std::nullopt;
}

std::optional<TelegramBytes> answerAsEthernet(const TelegramBytes& telegram, Framing framing,
                                              std::uint16_t sequence) {
    switch (framing) {
    case Framing::DataMode:
        return dataModeAnswer(telegram, sequence);
    case Framing::BreakMode:
        return breakModeAnswer(telegram, sequence);
    case Framing::Ethernet:
        break;
    }
    return std::nullopt;
}

} // namespace host
