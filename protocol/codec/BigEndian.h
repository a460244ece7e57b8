#pragma once

#include <QByteArray>
#include <QtEndian>

namespace sbus {

// Appends a number, the high byte first.
template <typename Number>
void appendBigEndian(QByteArray& bytes, Number number) {
    char numberBytes[sizeof number];
    qToBigEndian(number, numberBytes);
    bytes.append(numberBytes, sizeof number);
}

} // namespace sbus
