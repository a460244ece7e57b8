// Values that a telegram has read, put into the host's points.

#include "SBusRtu.h"

#include "SaiaFloat.h"
#include "WriteItems.h"

namespace {

double analogValue(int raw, const QString& media, const AnalogPoint& point) {
    const auto word = static_cast<quint32>(raw);
    if (media == QLatin1String("T"))
        return word;
    if (sbus::isFloatRegister(media, point.dataType))
        return sbus::decodeSaiaFloat(word);
    return raw;
}

} // namespace

// Of the second address only the number is compared, and the value put for it is the one that was read at
// the first: what stands at a second address of its own is never put.
void SBusRtu::publishStatusValues(quint32 start, const QString& media, const QList<quint8>& bits) {
    for (int i = 0; i < bits.size(); ++i) {
        const QString number = QString::number(start + static_cast<quint32>(i), 10);
        const auto value = static_cast<char>(bits.at(i));
        const auto found = statusIndex.constFind(media + number);
        if (found == statusIndex.cend())
            continue;
        for (const unsigned pointNumber : *found) {
            const StatusPoint* const point = GetPointList()->GetStatusPoint(pointNumber);
            if (point == nullptr)
                continue;
            if (point->firstAddressNumber == number)
                PutStatusPoint(false, pointNumber, value, 0, stamp.now(), true);
            if (point->secondAddressNumber == number)
                PutStatusPoint(false, pointNumber, value, 0, stamp.now(), false);
        }
    }
}

void SBusRtu::publishAnalogValues(quint32 start, const QString& media, const QList<int>& words) {
    for (int i = 0; i < words.size(); ++i) {
        const QString key = media + QString::number(start + static_cast<quint32>(i), 10);
        const auto found = analogIndex.constFind(key);
        if (found == analogIndex.cend())
            continue;
        for (const unsigned pointNumber : *found) {
            const AnalogPoint* const point = GetPointList()->GetAnalogPoint(pointNumber);
            if (point != nullptr)
                PutAnalogPoint(false, pointNumber, analogValue(words.at(i), media, *point), 0, stamp.now());
        }
    }
}
