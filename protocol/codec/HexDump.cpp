#include "HexDump.h"

namespace sbus {

QStringList hexDump(const char* bytes, int length) {
    constexpr int bytesInLine = 18;
    constexpr int charactersOfByte = 3;
    constexpr char digits[] = "0123456789ABCDEF";
    QStringList lines;
    int at = 0;
    do {
        QString line;
        line.reserve(bytesInLine * charactersOfByte);
        for (const int end = qMin(at + bytesInLine, length); at < end; ++at) {
            const auto byte = static_cast<quint8>(bytes[at]);
            line.append(QLatin1Char(digits[byte >> 4]));
            line.append(QLatin1Char(digits[byte & 0x0F]));
            line.append(QLatin1Char(' '));
        }
        lines.append(line);
    } while (at < length);
    return lines;
}

} // namespace sbus
