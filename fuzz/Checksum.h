#pragma once

#include <QByteArray>

#include <cstdint>

// The telegrams' checksum, by bits and apart from the product's code.

inline std::uint16_t referenceChecksum(const char* bytes, int size) {
    std::uint32_t remainder = 0;
    for (int at = 0; at < size; ++at)
        for (int bit = 7; bit >= 0; --bit) {
            const std::uint32_t in = static_cast<std::uint8_t>(bytes[at]) >> bit & 1U;
            const std::uint32_t out = remainder >> 15 & 1U;
            remainder = (remainder << 1 & 0xFFFFU) ^ ((in ^ out) != 0 ? 0x1021U : 0U);
        }
    return static_cast<std::uint16_t>(remainder);
}

inline void appendReferenceChecksum(QByteArray& bytes) {
    const std::uint16_t checksum = referenceChecksum(bytes.constData(), bytes.size());
    bytes.append(static_cast<char>(checksum >> 8)).append(static_cast<char>(checksum & 0xFF));
}

inline bool endsWithItsChecksum(const QByteArray& telegram) {
    constexpr int checksumSize = 2;
    const int size = telegram.size() - checksumSize;
    if (size < 0)
        return false;
    const std::uint16_t checksum = referenceChecksum(telegram.constData(), size);
    return telegram.at(size) == static_cast<char>(checksum >> 8) &&
           telegram.at(size + 1) == static_cast<char>(checksum & 0xFF);
}
