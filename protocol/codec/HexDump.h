#pragma once

#include <QStringList>

namespace sbus {

// Upper-case hex, 18 bytes a line, one blank after each byte. No bytes give one empty line.
QStringList hexDump(const char* bytes, int length);

} // namespace sbus
