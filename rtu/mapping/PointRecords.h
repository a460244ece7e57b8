#pragma once

#include "PointAddress.h"

#include <QList>

struct AnalogPoint;
struct StatusPoint;

// Splitting the address texts of the host's point records, in place.
namespace sbus {

// An address that does not match is the media as it stands, and the number field the number. A record that
// was split before gives the same pair again.
PointAddress parseAnalogAddress(AnalogPoint& point);
// The addresses that match: none, one or two. A record that was split before gives none.
QList<PointAddress> parseStatusAddresses(StatusPoint& point);

} // namespace sbus
