#include "WriteItems.h"

#include "BigEndian.h"
#include "MediaTable.h"
#include "SaiaFloat.h"

#include <HalvexDriverComponent/Halvex.h>

#include <cmath>
#include <iterator>
#include <limits>

namespace sbus {
namespace {

// What fits `Integer` of `value` cut toward zero; its lowest number for all else, NaN included.
template <typename Integer>
Integer truncated(double value) {
    constexpr Integer lowest = std::numeric_limits<Integer>::min();
    const double whole = std::trunc(value);
    const auto limit = -static_cast<double>(lowest); // a power of two: exact
    return whole >= -limit && whole < limit ? static_cast<Integer>(whole) : lowest;
}

template <typename Number>
QByteArray bigEndian(Number number) {
    QByteArray bytes;
    appendBigEndian(bytes, number);
    return bytes;
}

QByteArray integerData(const QString& media, double value) {
    if (media == QLatin1String("T"))
        return bigEndian(static_cast<quint32>(truncated<qint64>(value)));
    return bigEndian(truncated<qint32>(value));
}

SBusRequestItem itemOf(quint32 command, int address, quint32 count, const QByteArray& data) {
    SBusRequestItem item;
    item.command = command;
    item.count = count;
    item.address = static_cast<quint32>(address);
    item.data = data;
    return item;
}

} // namespace

SBusRequestItem writeItem(const QString& media, int address, quint32 count, const QByteArray& data) {
    SBusRequestItem item = itemOf(0, address, count, data);
    writeCommandForMedia(item.command, media);
    return item;
}

bool isFloatRegister(const QString& media, unsigned dataType) {
    return dataType == static_cast<unsigned>(Halvex::PointDataType::Float) && media == QLatin1String("R");
}

QByteArray setPointData(const QString& media, unsigned dataType, double value) {
    return isFloatRegister(media, dataType) ? bigEndian(encodeSaiaFloat(value)) : integerData(media, value);
}

QByteArray listData(const QString& media, unsigned dataType, double value) {
    if (!isFloatRegister(media, dataType))
        return integerData(media, value);
    return bigEndian(static_cast<double>(static_cast<float>(value)));
}

QList<SBusRequestItem> buildWriteItems(quint32 command, const DataByElement& elements) {
    constexpr quint32 longest = 31; // values in a telegram
    QList<SBusRequestItem> items;
    SBusRequestItem run; // open while its count is not 0
    for (auto element = elements.cbegin(); element != elements.cend(); ++element) {
        const auto next = std::next(element);
        const bool isLast = next == elements.cend();
        const bool opensRun = run.count == 0;
        const bool splitsRun = run.count == longest;
        if (splitsRun)
            items.append(run);
        if (opensRun || splitsRun)
            run = itemOf(command, element.key(), 0, {});
        run.data += element.value();
        ++run.count;
        if (opensRun && isLast)
            run.count = 0; // a lone last element goes out without a count
        else if (!isLast && (splitsRun || next.key() == element.key() + 1))
            continue;
        items.append(run);
        run.count = 0;
    }
    return items;
}

} // namespace sbus
