#pragma once

#include <QString>

namespace sbus {

// The lines of a hex dump: upper-case, 18 bytes a line, one blank after each byte. No bytes give one empty
// line. The lines are made one by one in the same place.
class HexDump {
public:
    // The bytes must stay until the last line is made.
    HexDump(const char* dumpedBytes, int length);

    // Makes the next line; false behind the last one.
    bool next();
    // Good until the next one is made.
    const QString& line() const { return text; }

private:
    const char* at;
    const char* const end;
    bool begun = false;
    QString text;
};

} // namespace sbus
