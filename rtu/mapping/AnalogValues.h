#pragma once

#include <QByteArray>
#include <QString>

// The numbers of analog points, and the words and bytes that stand for them in the elements of `media`. A
// point of a register whose data type is Float is a float register.
namespace sbus {

// A word as it was read: timers unsigned, float registers in the controller's own format, all else signed.
double readValue(const QString& media, unsigned dataType, quint32 word);

// What a single set point writes, in four bytes: timers unsigned, float registers in the controller's own
// format, all else signed. Cut toward zero; what a signed number cannot hold becomes 0x80000000.
QByteArray singleWriteData(const QString& media, unsigned dataType, double value);

// What a list of set points writes. Differs from a single one in float registers alone: they take the eight
// bytes of a double, rounded to single precision.
QByteArray listWriteData(const QString& media, unsigned dataType, double value);

} // namespace sbus
