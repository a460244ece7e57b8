#include "PointAddress.h"

#include <QRegExp>

namespace sbus {

std::optional<PointAddress> matchAddress(const QString& text) {
    // Qt keeps patterns, with their texts, when the plug-in is unloaded: the text must not be a part of the
    // plug-in.
    QRegExp pattern(QString::fromLatin1("([A-Z])(\\d{1,5})"));
    if (!pattern.exactMatch(text))
        return std::nullopt;
    return PointAddress{pattern.cap(1), pattern.cap(2)};
}

std::optional<PointAddress> matchAddressIgnoringBlanks(const QString& text) {
    return matchAddress(QString(text).remove(QLatin1Char(' ')));
}

} // namespace sbus
