#include "ClockBytes.h"

#include <QDateTime>

namespace sbus {

quint8 packedBcd(int number) {
    const int lastTwoDigits = number % 100;
    return static_cast<quint8>(lastTwoDigits / 10 * 16 + lastTwoDigits % 10);
}

QByteArray clockBytes(const QDateTime& time) {
    constexpr int firstYear = 2000;
    const QDate date = time.date();
    const QTime clock = time.time();
    QByteArray bytes;
    for (const int number : {date.weekNumber(), date.dayOfWeek(), date.year() - firstYear, date.month(),
                             date.day(), clock.hour(), clock.minute(), clock.second()})
        bytes.append(static_cast<char>(packedBcd(number)));
    return bytes;
}

} // namespace sbus
