#pragma once

#include "PointAddress.h"

#include <QList>

struct AnalogPoint;
struct StatusPoint;

// Splitting the address texts of the host's point records, in place.
namespace sbus {

// An address that does not match counts as the media as a whole, with the number field beside it: so a
// record that was split before gives the same pair again.
PointAddress parseAnalogAddress(AnalogPoint& point);
// The addresses that match, none to two; the others are passed over. A record that was split before gives
// none.
QList<PointAddress> parseStatusAddresses(StatusPoint& point);

} // namespace sbus
