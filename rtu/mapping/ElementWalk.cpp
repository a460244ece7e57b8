#include "ElementWalk.h"

namespace sbus {

ElementWalk::ElementWalk(const Index& pointIndex, const QString& media, quint32 firstElement)
    : index(pointIndex), element(firstElement), key(media), mediaLength(media.size()),
      candidate(index.cend()) {
    writeKey();
    find();
}

void ElementWalk::next() {
    countUp();
    find();
}

void ElementWalk::countUp() {
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

void ElementWalk::writeKey() {
    key.truncate(mediaLength);
    key += QString::number(element);
}

void ElementWalk::find() {
    found = nullptr;
    if (candidate == index.cend() || candidate.key() != key)
        candidate = index.constFind(key);
    if (candidate != index.cend())
        found = &(candidate++).value();
}

} // namespace sbus
