#pragma once

#include "SBusRequestItem.h"

#include <QList>
#include <QMap>

// The telegrams that write values.
namespace sbus {

// One telegram that writes `data` to `address` on.
SBusRequestItem writeItem(const QString& media, int address, quint32 count, const QByteArray& data);

// Element number to the bytes of its value.
using DataByElement = QMap<int, QByteArray>;

// The telegrams that write the elements of one media, in ascending order. Consecutive elements share a
// telegram of up to 31 values; a gap starts a new one. `count` is the number of values.
// Two traits are part of the behaviour. The last element goes out with count 0 when it is alone behind a gap,
// or alone altogether. When a telegram is full, the next element begins another one, and the element after
// that joins it whatever its number is.
QList<SBusRequestItem> buildWriteItems(quint32 command, const DataByElement& elements);

} // namespace sbus
