// Values that a telegram has read, put into the host's points.

#include "SBusRtu.h"

#include "AnalogValues.h"
#include "DecimalText.h"
#include "PointIndex.h"

void SBusRtu::publishStatusValues(quint32 start, const QString& media, const QList<quint8>& bits) {
    const auto put = [&](const sbus::PointIndex::Entry& entry) {
        const quint8 bit = bits.at(static_cast<int>(entry.element - start));
        putStatus(entry.pointNumber, entry.element, static_cast<char>(bit));
    };
    statusIndex->forEach(media, start, static_cast<quint32>(bits.size()), put);
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
    const sbus::WordReader reader(media);
    const auto firstWord = words.cbegin();
    const auto put = [&](const sbus::PointIndex::Entry& entry) {
        const int word = firstWord[static_cast<int>(entry.element - start)];
        putAnalog(entry.pointNumber, reader, static_cast<quint32>(word));
    };
    analogIndex->forEach(media, start, static_cast<quint32>(words.size()), put);
}

void SBusRtu::putAnalog(unsigned pointNumber, const sbus::WordReader& reader, quint32 word) {
    const AnalogPoint* const point = GetPointList()->GetAnalogPoint(pointNumber);
    if (point == nullptr)
        return;
    const double value = reader.value(point->dataType, word);
    PutAnalogPoint(false, pointNumber, value, 0, stamp.now());
}
