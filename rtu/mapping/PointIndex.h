#pragma once

#include <QMap>
#include <QString>
#include <QVector>

namespace sbus {

// Finds the points whose values an answer carries, by media and element number.
//
// A point's key is the text of its media and number, "R200", and an element is looked up under its media and
// its number in decimal. So a key with leading zeros, "R007", is never looked up, and the index leaves it
// out. A telegram reads elements that follow each other: the entries of a media are kept in the order of
// their elements, and one search finds the first of them. An entry takes 8 bytes.
//
// States: being filled (add), complete. Complete, it may be read on any thread.
class PointIndex {
public:
    struct Entry {
        quint32 element;
        unsigned pointNumber;
    };

    void add(const QString& key, unsigned pointNumber);
    // After the last add().
    void complete();

    // Calls `function` with each entry of `count` elements from `first` on: element by element, and those of
    // one element in the order in which they were added. The element behind the highest 32-bit number is 0.
    // `media` ends in no digit.
    template <typename Function>
    void forEach(const QString& media, quint32 first, quint32 count, Function function) const {
        const Entries entries = entriesOf(media, first);
        const auto callWhileInRange = [&](const Entry* at, const Entry* end) {
            for (; at != end && at->element - first < count; ++at)
                function(*at);
        };
        callWhileInRange(entries.first, entries.behindHighest);
        callWhileInRange(entries.lowest, entries.first);
    }

private:
    // The entries of one media, and in them the first one of an element or behind it.
    struct Entries {
        const Entry* lowest;
        const Entry* first;
        const Entry* behindHighest;
    };
    Entries entriesOf(const QString& media, quint32 element) const;

    QMap<QString, QVector<Entry>> entriesByMedia;
};

} // namespace sbus
