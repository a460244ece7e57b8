#pragma once

#include "CommandCode.h"
#include "Decoding.h"
#include "FuzzInput.h"
#include "SBusRequestItem.h"
#include "Telegram.h"

// What the fuzz targets of both framings need: an answer, as it comes or with its checksum made right so that
// the fuzzer gets past it, and a reading of it that shares no code with the product's.

inline std::uint16_t referenceChecksum(const QByteArray& bytes) {
    std::uint32_t remainder = 0;
    for (const char character : bytes)
        for (int bit = 7; bit >= 0; --bit) {
            const std::uint32_t in = static_cast<std::uint8_t>(character) >> bit & 1U;
            const std::uint32_t out = remainder >> 15 & 1U;
            remainder = (remainder << 1 & 0xFFFFU) ^ ((in ^ out) != 0 ? 0x1021U : 0U);
        }
    return static_cast<std::uint16_t>(remainder);
}

inline bool endsWithItsChecksum(const QByteArray& telegram) {
    if (telegram.size() < 2)
        return false;
    const std::uint16_t checksum = referenceChecksum(telegram.left(telegram.size() - 2));
    return telegram.at(telegram.size() - 2) == static_cast<char>(checksum >> 8) &&
           telegram.at(telegram.size() - 1) == static_cast<char>(checksum & 0xFF);
}

inline QByteArray takeAnswer(FuzzInput& input, bool makesChecksumRight) {
    const QByteArray bytes(reinterpret_cast<const char*>(input.rest()), static_cast<int>(input.restSize()));
    if (!makesChecksumRight)
        return bytes;
    QByteArray right = bytes;
    const std::uint16_t checksum = referenceChecksum(bytes);
    right.append(static_cast<char>(checksum >> 8));
    right.append(static_cast<char>(checksum & 0xFF));
    return right;
}

inline int payloadSizeOf(const QByteArray& response) {
    return response.size() < 2 ? 0 : response.size() - 2;
}

// `response`: payload and checksum of an answer that was found good.
inline void checkDecoding(const QByteArray& response, quint32 elements) {
    const int payload = payloadSizeOf(response);
    const QList<qint32> words = sbus::decodeWords(response, elements);
    require(words.size() == qMin(static_cast<int>(elements), payload / 4),
            "as many words as there are bytes for");
    for (int i = 0; i < words.size(); ++i) {
        std::uint32_t word = 0;
        for (int byte = 0; byte < 4; ++byte)
            word = word << 8 | static_cast<std::uint8_t>(response.at(4 * i + byte));
        require(static_cast<std::uint32_t>(words.at(i)) == word, "a word is its four bytes");
    }
    const QList<quint8> bits = sbus::decodeBits(response, elements);
    require(bits.size() == qMin(static_cast<int>(elements), payload * 8),
            "as many bits as there are bytes for");
    for (int i = 0; i < bits.size(); ++i)
        require(bits.at(i) == (static_cast<std::uint8_t>(response.at(i / 8)) >> i % 8 & 1),
                "a bit is its own");
}
