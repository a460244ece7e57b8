#include "Decoding.h"

#include "Telegram.h"

#include <QVector>
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

// A list of zeros that was copied: to append them one by one takes longer than to decode them.
template <typename Value>
QList<Value> listOf(int size) {
    constexpr int mostInTelegram = 128;
    static const QList<Value> longest = QVector<Value>(mostInTelegram).toList();
    QList<Value> list = longest.mid(0, size);
    while (list.size() < size)
        list.append(0);
    return list;
}

} // namespace

QList<quint8> decodeBits(const QByteArray& response, quint32 elements) {
    const int count = covered(elements, payloadSize(response) * bitsInByte);
    QList<quint8> values = listOf<quint8>(count);
    auto value = values.begin();
    for (int i = 0; i < count; ++i, ++value) {
        const auto byte = static_cast<quint8>(response.at(i / bitsInByte));
        *value = (byte >> (i % bitsInByte)) & 1;
    }
    return values;
}

QList<qint32> decodeWords(const QByteArray& response, quint32 elements) {
    const int count = covered(elements, payloadSize(response) / static_cast<int>(wordSize));
    QList<qint32> values = listOf<qint32>(count);
    const char* word = response.constData();
    for (qint32& value : values) {
        value = qFromBigEndian<qint32>(word);
        word += wordSize;
    }
    return values;
}

} // namespace sbus
