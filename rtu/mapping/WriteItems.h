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
// Two traits are part of the behaviour. An element that has a telegram to itself and is the last of all goes
// out with count 0, unless it is there because the telegram before it was full. And the element after one
// that was cut off by a full telegram joins it without a look at its number.
QList<SBusRequestItem> buildWriteItems(quint32 command, const DataByElement& elements);

} // namespace sbus
