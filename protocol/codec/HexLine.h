#pragma once

#include <QChar>

namespace sbus {

constexpr int hexCharactersOfByte = 3;

// Writes each of `count` bytes as two upper-case digits and a blank. `characters` has room for all of them
// and for one more behind, which is changed.
void writeHexLine(QChar* characters, const char* bytes, int count);

} // namespace sbus
