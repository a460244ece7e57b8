#include "Hex.h"

QByteArray hex(const char* text) {
    return QByteArray::fromHex(text);
}

QByteArray toHex(const QByteArray& bytes) {
    return bytes.toHex(' ').toUpper();
}
