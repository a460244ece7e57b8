#pragma once

#include "SBusPublishingRtu.h"
#include "SBusRequest.h"
#include "ValueStamp.h"

#include <QDateTime>
#include <QMap>

#include <memory>

class SBusDelayedQueue;
class SBusProtocolBase;

namespace sbus {
class PointIndex;
class WordReader;
} // namespace sbus

// One Saia PCD station. Keeps the three polls ready, hands copies of them to the channel's engine when the
// host asks, puts the values that come back into the host's points, and makes requests of its commands.
//
// States: polls not built, built. They are built from the host's points at InitRtu, or at the first poll.
// Threads: once the polls are built, RequestPoll and the commands on any; they build a request and hand it
// over. The publishers run on the channel's thread and read the point indexes without a lock, so the polls
// must not be built at the same time. Ownership: the host owns the RTU, the channel owns the protocol object
// and the delayed queue.
class SBusRtu final : public SBusPublishingRtu {
public:
    // A test may give a clock of its own.
    SBusRtu(CChannel* owner, HalvexDriverCoreInterface* coreInterface, const RemoteTerminalUnit& rtu,
            sbus::WallClock wallClock = QDateTime::currentMSecsSinceEpoch);
    ~SBusRtu() override;

    void attachProtocol(SBusProtocolBase* newProtocol, SBusDelayedQueue* newQueue);

    bool InitRtu() override;
    void StopRtu() override;
    int RequestPoll(int kind, CReply* reply) override;
    int RequestHistory(int kind, CReply* reply) override;
    // 0 off, 1 on. A pulse output to which 1 was written is released when its width is over.
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
    QList<SBusRequestItem> buildAnalogItems(const QList<AnalogPoint*>& analogPoints);
    QList<SBusRequestItem> buildStatusItems(const QList<StatusPoint*>& statusPoints);
    SBusRequest requestOf(const QString& name, const QList<SBusRequestItem>& items);
    void submitCommand(const QString& name, const QList<SBusRequestItem>& items, CReply* reply);
    void putStatus(unsigned pointNumber, quint32 element, char value);
    void putAnalog(unsigned pointNumber, const sbus::WordReader& reader, quint32 word);
    void schedulePulseRelease(const StatusPoint& point, const SBusRequestItem& switchOn);
    // Null for a kind that is no poll. The `rtu` of a poll that was never built is null.
    const SBusRequest* preparedPollOf(int kind) const;

    CChannel* const channel;
    bool pollsBuilt = false;
    SBusProtocolBase* protocol = nullptr;
    SBusRequest analogPoll;
    SBusRequest statusPoll;
    SBusRequest integrityPoll;
    const std::unique_ptr<sbus::PointIndex> analogIndex;
    const std::unique_ptr<sbus::PointIndex> statusIndex; // of the first addresses
    const sbus::WallClock clock;
    sbus::ValueStamp stamp; // the channel's thread
    SBusDelayedQueue* delayedQueue = nullptr;
};
