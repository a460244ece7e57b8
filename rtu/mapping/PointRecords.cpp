#include "PointRecords.h"

#include <HalvexDriverComponent/AnalogPoint.h>
#include <HalvexDriverComponent/StatusPoint.h>

namespace sbus {
namespace {

void splitStatusAddress(QString& address, QString& number, QList<PointAddress>& found) {
    const std::optional<PointAddress> match = matchAddressIgnoringBlanks(address);
    if (!match)
        return;
    address = match->media;
    number = match->numberText;
    found.append(*match);
}

} // namespace

PointAddress parseAnalogAddress(AnalogPoint& point) {
    if (const std::optional<PointAddress> match = matchAddress(point.address)) {
        point.address = match->media;
        point.addressNumber = match->numberText;
    }
    return {point.address, point.addressNumber};
}

QList<PointAddress> parseStatusAddresses(StatusPoint& point) {
    QList<PointAddress> found;
    splitStatusAddress(point.firstAddress, point.firstAddressNumber, found);
    splitStatusAddress(point.secondAddress, point.secondAddressNumber, found);
    return found;
}

} // namespace sbus
