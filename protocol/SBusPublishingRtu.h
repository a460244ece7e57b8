#pragma once

#include <HalvexDriverComponent/CRtu.h>

#include <QList>
#include <QString>

// An RTU as the engine knows it: the host's, which also takes what a telegram has read. Channel's thread.
class SBusPublishingRtu : public CRtu {
public:
    using CRtu::CRtu;
    ~SBusPublishingRtu() override;

    // Value i belongs to element `start` + i of `media`. Bits are 0 or 1; words are as the wire had them.
    virtual void publishStatusValues(quint32 start, const QString& media, const QList<quint8>& values) = 0;
    virtual void publishAnalogValues(quint32 start, const QString& media, const QList<int>& values) = 0;
};
