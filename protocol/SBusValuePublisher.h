#pragma once

#include <QList>
#include <QString>

// Where the engine hands over what a telegram has read: an RTU that also is one of these. Channel's thread.
class SBusValuePublisher {
public:
    virtual ~SBusValuePublisher();

    // Value i belongs to element `start` + i of `media`. Bits are 0 or 1; words are as the wire had them.
    virtual void publishStatusValues(quint32 start, const QString& media, const QList<quint8>& values) = 0;
    virtual void publishAnalogValues(quint32 start, const QString& media, const QList<int>& values) = 0;
};
