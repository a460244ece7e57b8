#include "HexDump.h"

namespace sbus {

QStringList hexDump(const char* bytes, int length) {
    constexpr int bytesInLine = 18;
    constexpr int charactersOfByte = 3;
    constexpr char digits[] = "0123456789ABCDEF";
    QStringList lines;
    int at = 0;
    do {
        const int end = qMin(at + bytesInLine, length);
        QString line((end - at) * charactersOfByte, Qt::Uninitialized);
        QChar* character = line.data(); // every telegram goes through here, whether or not somebody looks
        for (; at < end; ++at) {
            const auto byte = static_cast<quint8>(bytes[at]);
            *character++ = QLatin1Char(digits[byte >> 4]);
            *character++ = QLatin1Char(digits[byte & 0x0F]);
            *character++ = QLatin1Char(' ');
        }
        lines.append(line);
    } while (at < length);
    return lines;
}

} // namespace sbus
