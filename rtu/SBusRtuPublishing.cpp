// Values that a telegram has read, put into the host's points.

#include "SBusRtu.h"

#include "ElementWalk.h"
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
    stamp.renew();
    sbus::ElementWalk walk(statusIndex, media, start);
    for (const quint8 bit : bits) {
        if (const QList<unsigned>* const numbers = walk.points())
            for (const unsigned pointNumber : *numbers)
                putStatus(pointNumber, walk.number(), static_cast<char>(bit));
        walk.next();
    }
}

void SBusRtu::putStatus(unsigned pointNumber, QStringView elementNumber, char value) {
    const StatusPoint* const point = GetPointList()->GetStatusPoint(pointNumber);
    if (point == nullptr)
        return;
    if (point->firstAddressNumber == elementNumber)
        PutStatusPoint(false, pointNumber, value, 0, stamp.value(), true);
    if (point->secondAddressNumber == elementNumber)
        PutStatusPoint(false, pointNumber, value, 0, stamp.value(), false);
}

void SBusRtu::publishAnalogValues(quint32 start, const QString& media, const QList<int>& words) {
    const bool isTimer = media == QLatin1String("T");
    stamp.renew();
    sbus::ElementWalk walk(analogIndex, media, start);
    for (const int word : words) {
        if (const QList<unsigned>* const numbers = walk.points())
            for (const unsigned pointNumber : *numbers)
                if (const AnalogPoint* const point = GetPointList()->GetAnalogPoint(pointNumber))
                    PutAnalogPoint(false, pointNumber, analogValue(word, isTimer, media, *point), 0,
                                   stamp.value());
        walk.next();
    }
}
