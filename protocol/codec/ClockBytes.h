#pragma once

#include <QByteArray>

class QDateTime;

namespace sbus {

// The decimal digits of a number from 0 to 99, tens in the high nibble; of a larger one the last two.
quint8 packedBcd(int number);

// What the clock telegram carries: ISO week, day of the week (Monday 1), year of the century, month, day,
// hour, minute and second, each in packed BCD.
QByteArray clockBytes(const QDateTime& time);

} // namespace sbus
