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

PointIndex::Entries PointIndex::entriesOf(const QString& media, quint32 element) const {
    const auto found = entriesByMedia.constFind(media);
    if (found == entriesByMedia.cend())
        return {nullptr, nullptr, nullptr};
    const QVector<Entry>& entries = found.value();
    return {entries.cbegin(), std::lower_bound(entries.cbegin(), entries.cend(), element, isBefore),
            entries.cend()};
}

} // namespace sbus
