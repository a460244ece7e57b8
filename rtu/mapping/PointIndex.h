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

    // The entries of one element, in the order in which they were added.
    struct Entries {
        const Entry* first;
        const Entry* behindLast;

        const Entry* begin() const { return first; }
        const Entry* end() const { return behindLast; }
    };

    // Goes from element to element. The one behind the highest 32-bit number is 0. The index must outlive it.
    class Walk {
    public:
        // The entries of the element that is next.
        Entries next() {
            if (element == 0)
                at = all.first;
            const Entry* const first = at;
            while (at != all.behindLast && at->element == element)
                ++at;
            ++element;
            return {first, at};
        }

    private:
        friend class PointIndex;
        Walk(const QVector<Entry>& entries, quint32 firstElement);

        Entries all; // of the media
        quint32 element;
        const Entry* at;
    };

    void add(const QString& key, unsigned pointNumber);
    // After the last add(), before the first walk.
    void complete();
    // `media` ends in no digit.
    Walk from(const QString& media, quint32 element) const;

private:
    QMap<QString, QVector<Entry>> entriesByMedia;
};

} // namespace sbus
