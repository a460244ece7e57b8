#pragma once

#include <QHash>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringView>
#include <QVector>

namespace sbus {

// The lookup key of an element, "R98", as a text that is counted up in place: every value of every answer has
// one.
class ElementKey {
public:
    ElementKey(const QString& media, quint32 firstElement);

    const QString& text() const { return key; }
    // In decimal, without leading zeros. Good until next().
    QStringView number() const { return QStringView(key).mid(mediaLength); }
    // The element behind the highest number is 0.
    void next();

private:
    void writeKey();

    quint32 element;
    QString key;
    const int mediaLength;
};

// A point at one of a telegram's elements, which are counted from its first one, 0.
struct PointAtElement {
    int element = 0;
    unsigned pointNumber = 0;
};

// Finds the points of a telegram's elements in an index. Polls send the same telegrams again and again: so
// what was found for one is remembered, and the index is searched for its first answer only. One thread. The
// index must outlive it; who changes it calls forget().
class ElementFinder {
public:
    using Index = QMap<QString, QList<unsigned>>; // address key to point numbers
    explicit ElementFinder(const Index& searchedIndex) : index(searchedIndex) {}

    // The points of at least `count` elements, in the order of the elements, and of those of one element in
    // that of the index. Good until the next call.
    const QVector<PointAtElement>& find(const QString& media, quint32 firstElement, int count);
    void forget() { remembered.clear(); }

private:
    struct Found {
        int elements = 0;
        QVector<PointAtElement> points;
    };

    QVector<PointAtElement> search(const QString& media, quint32 firstElement, int count) const;

    const Index& index;
    QHash<QString, Found> remembered; // by the key of the first element
};

} // namespace sbus
