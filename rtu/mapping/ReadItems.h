#pragma once

#include "SBusRequestItem.h"

#include <QList>
#include <QMap>
#include <QString>

namespace sbus {

// Element number to the number of consecutive elements that it occupies; 0 counts as 1.
using MediaAddressSet = QMap<int, int>;

// The read telegrams that fetch the elements of one media, in ascending order. Consecutive elements share a
// telegram of up to one element less than the media's limit; a gap starts a new one.
// Two traits are part of the behaviour. Where the last entry of the set is the one that reaches the limit,
// the telegram before it goes out with command 0, and the telegram of that entry asks for one element too
// many. Where another entry reaches the limit, it begins a telegram, and the entry after it joins that
// telegram whatever its number is.
QList<SBusRequestItem> buildReadItems(const QString& media, const MediaAddressSet& elements);

} // namespace sbus
