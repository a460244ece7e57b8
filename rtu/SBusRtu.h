#pragma once

#include "SBusRequest.h"
#include "SBusValuePublisher.h"
#include "ValueStamp.h"

#include <HalvexDriverComponent/CRtu.h>

#include <QMap>

#include <memory>

class SBusDelayedQueue;
class SBusProtocolBase;

namespace sbus {
class ElementFinder;
}

// One Saia PCD station. Keeps the three polls ready, hands copies of them to the channel's engine when the
// host asks, puts the values that come back into the host's points, and makes requests of its commands.
//
// States: polls not built, built. They are built from the host's points at InitRtu, or at the first poll.
// Threads: once the polls are built, RequestPoll and the commands on any; they build a request and hand it
// over. The publishers run on the channel's thread and read the point indexes without a lock: nothing may
// build them meanwhile. Ownership: the host owns the RTU; channel, protocol object and delayed queue are the
// channel's.
class SBusRtu final : public CRtu, public SBusValuePublisher {
public:
    SBusRtu(CChannel* owner, HalvexDriverCoreInterface* coreInterface, const RemoteTerminalUnit& rtu);
    ~SBusRtu() override;

    void attachProtocol(SBusProtocolBase* newProtocol, SBusDelayedQueue* newQueue);

    bool InitRtu() override;
    void StopRtu() override;
    int RequestPoll(int kind, CReply* reply) override;
    int RequestHistory(int kind, CReply* reply) override;
    // 0 off, 1 on. A pulse output that was switched on is released when its width is over.
    int statusWrite(unsigned pointId, signed char command, CReply* reply) override;
    int analogWrite(unsigned pointId, double value, CReply* reply) override;
    // By point number; consecutive elements share a telegram.
    int analogWriteList(const QMap<unsigned, double>& setPoints, CReply* reply) override;
    // The computer's local time. Without a reply it waits its turn behind the polls.
    int timeSync(CReply* reply) override;
    int readParameter(unsigned parameter, CReply* reply) override;
    int writeParameter(unsigned parameter, double value, CReply* reply) override;
    int resetDevice(CReply* reply) override;

    void publishStatusValues(quint32 start, const QString& media, const QList<quint8>& bits) override;
    void publishAnalogValues(quint32 start, const QString& media, const QList<int>& words) override;

    // Builds the polls and the point indexes, unless they are built or the RTU has no points.
    void buildPollTable();

private:
    using PointIndex = QMap<QString, QList<unsigned>>; // address key to point numbers, ascending

    QList<SBusRequestItem> buildAnalogItems(const QList<AnalogPoint*>& analogPoints);
    QList<SBusRequestItem> buildStatusItems(const QList<StatusPoint*>& statusPoints);
    SBusRequest requestOf(const QString& name, const QList<SBusRequestItem>& items);
    void submitCommand(const QString& name, const QList<SBusRequestItem>& items, CReply* reply);
    void putStatus(unsigned pointNumber, QStringView elementNumber, char value);
    void schedulePulseRelease(const StatusPoint& point, const SBusRequestItem& switchOn);
    // Null for a kind that is no poll. A poll that was never built has no RTU.
    const SBusRequest* preparedPollOf(int kind) const;

    CChannel* const channel;
    bool pollsBuilt = false;
    SBusProtocolBase* protocol = nullptr;
    SBusRequest analogPoll;
    SBusRequest statusPoll;
    SBusRequest integrityPoll;
    PointIndex analogIndex;
    PointIndex statusIndex;
    const std::unique_ptr<sbus::ElementFinder> analogFinder; // the channel's thread, once the polls are built
    const std::unique_ptr<sbus::ElementFinder> statusFinder;
    ValueStamp stamp; // the channel's thread
    SBusDelayedQueue* delayedQueue = nullptr;
};
