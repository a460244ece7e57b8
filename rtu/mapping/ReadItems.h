#pragma once

#include "SBusRequestItem.h"

#include <QList>
#include <QMap>
#include <QString>

namespace sbus {

// Element number to the number of consecutive elements that it occupies; 0 counts as 1.
using MediaAddressSet = QMap<int, int>;

// The read telegrams that fetch the elements of one media, in ascending order. Consecutive elements share a
// telegram up to one below the media's limit; a gap starts a new one.
// Two traits of the cut at the limit are part of the behaviour. When the limit is reached with the last
// element, the telegram before it goes out with command 0 and the last one asks for one element too many.
// When it is reached before the last, the element after the cut joins without a look at its number.
QList<SBusRequestItem> buildReadItems(const QString& media, const MediaAddressSet& elements);

} // namespace sbus
