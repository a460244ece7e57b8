#pragma once

#include <QtGlobal>

namespace sbus {

// CRC-16 with polynomial 0x1021, start value 0, most significant bit first, no final exclusive-or.
quint16 checksumOf(const char* bytes, int length);

} // namespace sbus
