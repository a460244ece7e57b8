#pragma once

#include <QByteArray>

#include <ostream>

// "B5 00 01" to its three bytes.
QByteArray hex(const char* text);
// Upper-case, one blank between bytes.
QByteArray toHex(const QByteArray& bytes);
