#pragma once

#include "Checksum.h"
#include "CommandCode.h"
#include "Decoding.h"
#include "FuzzInput.h"
#include "SBusRequestItem.h"
#include "Telegram.h"

// What the fuzz targets of both framings need: an answer, as it comes or with its checksum made right so that
// the fuzzer gets past it, and a reading of it that shares no code with the product's.

inline QByteArray takeAnswer(FuzzInput& input, bool makesChecksumRight) {
    const QByteArray bytes(reinterpret_cast<const char*>(input.rest()), static_cast<int>(input.restSize()));
    if (!makesChecksumRight)
        return bytes;
    QByteArray right = bytes;
    appendReferenceChecksum(right);
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
