// Values that a telegram has read, put into the host's points.

#include "SBusRtu.h"

#include "AnalogValues.h"
#include "DecimalText.h"
#include "PointIndex.h"

void SBusRtu::publishStatusValues(quint32 start, const QString& media, const QList<quint8>& bits) {
    sbus::PointIndex::Walk walk = statusIndex->from(media, start);
    quint32 element = start;
    for (const quint8 bit : bits) {
        for (const sbus::PointIndex::Entry& entry : walk.next())
            putStatus(entry.pointNumber, element, static_cast<char>(bit));
        ++element;
    }
}

// Only the numbers of the addresses are compared, not their media. A point is found by its first address
// alone, so the value that is put for the second one was read at the first.
void SBusRtu::putStatus(unsigned pointNumber, quint32 element, char value) {
    const StatusPoint* const point = GetPointList()->GetStatusPoint(pointNumber);
    if (point == nullptr)
        return;
    if (sbus::isDecimalText(point->firstAddressNumber, element))
        PutStatusPoint(false, pointNumber, value, 0, stamp.now(), true);
    if (sbus::isDecimalText(point->secondAddressNumber, element))
        PutStatusPoint(false, pointNumber, value, 0, stamp.now(), false);
}

void SBusRtu::publishAnalogValues(quint32 start, const QString& media, const QList<int>& words) {
    sbus::PointIndex::Walk walk = analogIndex->from(media, start);
    for (const int word : words)
        for (const sbus::PointIndex::Entry& entry : walk.next())
            putAnalog(entry.pointNumber, media, static_cast<quint32>(word));
}

void SBusRtu::putAnalog(unsigned pointNumber, const QString& media, quint32 word) {
    const AnalogPoint* const point = GetPointList()->GetAnalogPoint(pointNumber);
    if (point == nullptr)
        return;
    const double value = sbus::readValue(media, point->dataType, word);
    PutAnalogPoint(false, pointNumber, value, 0, stamp.now());
}
