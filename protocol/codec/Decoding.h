#pragma once

#include <QByteArray>
#include <QList>

// Cuts the answer to a read into one value an element. `response` is the payload followed by the two
// checksum bytes, which are never taken for data; a payload that is too short gives fewer values.
namespace sbus {

// `elements` values of 0 or 1, the lowest bit of each byte first.
QList<quint8> decodeBits(const QByteArray& response, quint32 elements);
// `elements` big-endian signed 32-bit values.
QList<qint32> decodeWords(const QByteArray& response, quint32 elements);

} // namespace sbus
