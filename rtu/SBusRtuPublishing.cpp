// Values that a telegram has read, put into the host's points.

#include "SBusRtu.h"

#include "ElementFinder.h"
#include "SaiaFloat.h"
#include "WriteItems.h"

namespace {

double analogValue(int raw, bool isTimer, const QString& media, const AnalogPoint& point) {
    const auto word = static_cast<quint32>(raw);
    if (isTimer)
        return word;
    if (sbus::isFloatRegister(media, point.dataType))
        return sbus::decodeSaiaFloat(word);
    return raw;
}

} // namespace

// Of the second address only the number is compared, and the value put for it is the one that was read at
// the first: what stands at a second address of its own is never put.
void SBusRtu::publishStatusValues(quint32 start, const QString& media, const QList<quint8>& bits) {
    stamp.beginTelegram();
    sbus::ElementKey key(media, start);
    int keyElement = 0;
    for (const auto& [element, pointNumber] : statusFinder->find(media, start, bits.size())) {
        if (element >= bits.size())
            break;
        for (; keyElement < element; ++keyElement)
            key.next();
        putStatus(pointNumber, key.number(), static_cast<char>(bits.at(element)));
    }
}

void SBusRtu::putStatus(unsigned pointNumber, QStringView elementNumber, char value) {
    const StatusPoint* const point = GetPointList()->GetStatusPoint(pointNumber);
    if (point == nullptr)
        return;
    if (point->firstAddressNumber == elementNumber)
        PutStatusPoint(false, pointNumber, value, 0, stamp.now(), true);
    if (point->secondAddressNumber == elementNumber)
        PutStatusPoint(false, pointNumber, value, 0, stamp.now(), false);
}

void SBusRtu::publishAnalogValues(quint32 start, const QString& media, const QList<int>& words) {
    stamp.beginTelegram();
    const bool isTimer = media == QLatin1String("T");
    for (const auto& [element, pointNumber] : analogFinder->find(media, start, words.size())) {
        if (element >= words.size())
            break;
        if (const AnalogPoint* const point = GetPointList()->GetAnalogPoint(pointNumber))
            PutAnalogPoint(false, pointNumber, analogValue(words.at(element), isTimer, media, *point), 0,
                           stamp.now());
    }
}
