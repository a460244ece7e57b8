#include "ElementFinder.h"

namespace sbus {

ElementKey::ElementKey(const QString& media, quint32 firstElement)
    : element(firstElement), key(media), mediaLength(media.size()) {
    writeKey();
}

void ElementKey::next() {
    ++element;
    QChar* const text = key.data();
    int at = key.size() - 1;
    while (at >= mediaLength && text[at] == QLatin1Char('9'))
        text[at--] = QLatin1Char('0');
    if (at >= mediaLength && element != 0)
        text[at] = QChar(text[at].unicode() + 1);
    else
        writeKey(); // one digit more, or the numbers begin anew
}

void ElementKey::writeKey() {
    key.truncate(mediaLength);
    key += QString::number(element);
}

const QVector<PointAtElement>& ElementFinder::find(const QString& media, quint32 firstElement, int count) {
    Found& found = remembered[ElementKey(media, firstElement).text()];
    if (found.elements < count)
        found = {count, search(media, firstElement, count)};
    return found.points;
}

QVector<PointAtElement> ElementFinder::search(const QString& media, quint32 firstElement, int count) const {
    QVector<PointAtElement> points;
    ElementKey key(media, firstElement);
    for (int i = 0; i < count; ++i, key.next()) {
        const auto entry = index.constFind(key.text());
        if (entry != index.cend())
            for (const unsigned number : entry.value())
                points.append({i, number});
    }
    return points;
}

} // namespace sbus
