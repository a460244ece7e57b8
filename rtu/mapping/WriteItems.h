#pragma once

#include "SBusRequestItem.h"

#include <QList>
#include <QMap>

// The telegrams that write values, and the bytes that they carry.
namespace sbus {

// One telegram that writes `data` to `address` on.
SBusRequestItem writeItem(const QString& media, int address, quint32 count, const QByteArray& data);

// Whether the element holds a number in the controller's floating-point format, whichever way it travels.
bool isFloatRegister(const QString& media, unsigned dataType);

// The value of one element as a single set point writes it, in four bytes: timers unsigned, float registers
// in the controller's own format, all else as a signed number. Cut toward zero; what a signed number cannot
// hold becomes 0x80000000.
QByteArray setPointData(const QString& media, unsigned dataType, double value);
// The same as a list writes it: a float register takes the eight bytes of a double.
QByteArray listData(const QString& media, unsigned dataType, double value);

using DataByElement = QMap<int, QByteArray>;

// Consecutive elements of one media in one telegram each, up to 31. The element with which a telegram begins
// because the one before is full takes the element after it for its neighbour, wherever that stands.
QList<SBusRequestItem> buildWriteItems(quint32 command, const DataByElement& elements);

} // namespace sbus
