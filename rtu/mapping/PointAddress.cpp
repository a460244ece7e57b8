#include "PointAddress.h"

#include <QRegExp>

#include <array>

namespace sbus {
namespace {

using Letters = std::array<QString, 26>;

Letters makeLetters() {
    Letters letters;
    char16_t letter = u'A';
    for (QString& text : letters)
        text = QChar(letter++);
    return letters;
}

// One text for each letter, shared by all points: a text of its own would take 48 bytes of each point's
// record.
const QString& mediaOf(QChar letter) {
    static const Letters letters = makeLetters();
    return letters.at(letter.unicode() - std::size_t{u'A'});
}

} // namespace

std::optional<PointAddress> matchAddress(const QString& text) {
    // Qt keeps used patterns longer than the plug-in may be loaded. A QStringLiteral would be a part of the
    // plug-in; this text is a copy.
    QRegExp pattern(QString::fromLatin1("([A-Z])(\\d{1,5})"));
    if (!pattern.exactMatch(text))
        return std::nullopt;
    return PointAddress{mediaOf(text.at(0)), pattern.cap(2)};
}

std::optional<PointAddress> matchAddressIgnoringBlanks(const QString& text) {
    return matchAddress(QString(text).remove(QLatin1Char(' ')));
}

} // namespace sbus
