#include "Decoding.h"

#include "Telegram.h"
#include "ZeroList.h"

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
    QList<quint8> values = zeroList<quint8>(count);
    auto value = values.begin();
    for (int i = 0; i < count; ++i, ++value) {
        const auto byte = static_cast<quint8>(response.at(i / bitsInByte));
        *value = (byte >> (i % bitsInByte)) & 1;
    }
    return values;
}

QList<qint32> decodeWords(const QByteArray& response, quint32 elements) {
    const int count = covered(elements, payloadSize(response) / static_cast<int>(wordSize));
    QList<qint32> values = zeroList<qint32>(count);
    const char* word = response.constData();
    for (qint32& value : values) {
        value = qFromBigEndian<qint32>(word);
        word += wordSize;
    }
    return values;
}

} // namespace sbus
