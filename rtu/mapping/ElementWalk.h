#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringView>

namespace sbus {

// Goes through consecutive elements and finds their points. Every value of every answer comes through here:
// the key is one text that is counted up in place, and since neighbouring elements mostly are neighbours in
// the order of the texts too, the entry behind the one found last is looked at before the index is searched.
// The index must not change meanwhile.
class ElementWalk {
public:
    using Index = QMap<QString, QList<unsigned>>; // address key to point numbers

    ElementWalk(const Index& pointIndex, const QString& media, quint32 firstElement);

    // Null for an element without points.
    const QList<unsigned>* points() const { return found; }
    // The element's number in decimal, without leading zeros. Good until next().
    QStringView number() const { return QStringView(key).mid(mediaLength); }
    // The element behind the highest number is 0.
    void next();

private:
    void countUp();
    void writeKey();
    void find();

    const Index& index;
    quint32 element;
    QString key;
    const int mediaLength;
    Index::const_iterator candidate; // the entry behind the one found last
    const QList<unsigned>* found = nullptr;
};

} // namespace sbus
