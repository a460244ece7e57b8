#include "PointIndex.h"

#include <algorithm>

namespace sbus {
namespace {

const auto isBefore = [](const PointIndex::Entry& entry, quint32 element) { return entry.element < element; };

int mediaLength(const QString& key) {
    int length = key.size();
    while (length > 0 && key.at(length - 1).isDigit())
        --length;
    return length;
}

} // namespace

PointIndex::Walk::Walk(const QVector<Entry>& entries, quint32 firstElement)
    : all{entries.cbegin(), entries.cend()}, element(firstElement),
      at(std::lower_bound(all.first, all.behindLast, firstElement, isBefore)) {}

void PointIndex::add(const QString& key, unsigned pointNumber) {
    const int media = mediaLength(key);
    const QString number = key.mid(media);
    const quint32 element = number.toUInt();
    if (number == QString::number(element))
        entriesByMedia[key.left(media)].append({element, pointNumber});
}

void PointIndex::complete() {
    const auto ofLowerElement = [](const Entry& a, const Entry& b) { return a.element < b.element; };
    for (QVector<Entry>& entries : entriesByMedia) {
        std::stable_sort(entries.begin(), entries.end(), ofLowerElement);
        entries.squeeze();
    }
}

PointIndex::Walk PointIndex::from(const QString& media, quint32 element) const {
    static const QVector<Entry> none;
    const auto entries = entriesByMedia.constFind(media);
    return {entries == entriesByMedia.cend() ? none : entries.value(), element};
}

} // namespace sbus
