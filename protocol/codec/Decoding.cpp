#include "Decoding.h"

#include "Telegram.h"

#include <QtEndian>

#include <algorithm>
#include <cstddef>

namespace sbus {
namespace {

constexpr int bitsInByte = 8;
constexpr std::ptrdiff_t wordSize = 4;

int payloadSize(const QByteArray& response) {
    return std::max(0, response.size() - checksumSize);
}

int covered(quint32 elements, int payloadElements) {
    return static_cast<int>(std::min<quint64>(elements, static_cast<quint64>(payloadElements)));
}

} // namespace

QList<quint8> decodeBits(const QByteArray& response, quint32 elements) {
    const int count = covered(elements, payloadSize(response) * bitsInByte);
    QList<quint8> values;
    values.reserve(count);
    for (int i = 0; i < count; ++i) {
        const auto byte = static_cast<quint8>(response.at(i / bitsInByte));
        values.append((byte >> (i % bitsInByte)) & 1);
    }
    return values;
}

QList<qint32> decodeWords(const QByteArray& response, quint32 elements) {
    const int count = covered(elements, payloadSize(response) / static_cast<int>(wordSize));
    QList<qint32> values;
    values.reserve(count);
    for (int i = 0; i < count; ++i)
        values.append(qFromBigEndian<qint32>(response.constData() + i * wordSize));
    return values;
}

} // namespace sbus
