#pragma once

#include "SBusPendingTable.h"
#include "SBusRequest.h"
#include "SBusResultCode.h"
#include "SBusResultReporter.h"

#include <HalvexDriverComponent/Halvex.h>

#include <QByteArray>
#include <QMutex>
#include <QObject>

#include <atomic>

class CChannel;
class CLink;

// The transaction engine of one channel: the cycle that takes one request from the table of those that wait,
// exchanges its telegrams, hands over what they have read and reports how the request ended. What differs on
// the wire is left to the serial and the Ethernet protocol.
//
// States: offline (no link) and online. A channel that has once been connected stays online here while its
// link is opened anew, so that requests wait in the table. Commands go to the front of the table and displace
// an equal request, polls go to the back unless an equal one is pending. Threads: submitRequest and
// queueRequest on any, so an offline command is reported on its caller's thread; everything else on the
// channel's thread. The table's mutex is held only while the table is touched, never during traffic or
// reporting. Ownership: the channel is the parent; link, RTUs and replies belong to others.
class SBusProtocolBase : public QObject {
public:
    explicit SBusProtocolBase(CChannel* owner);
    ~SBusProtocolBase() override;

    // Called after every good read exchange, before its values are decoded. SBusSuccess, or the code with
    // which the request ends instead.
    virtual unsigned checkResponse(const QByteArray& frame, const QByteArray& response,
                                   const SBusRequest& request, const SBusRequestItem& item) = 0;
    virtual void buildReadFrame(QByteArray& frame, const SBusRequestItem& item, int station) = 0;
    virtual void buildWriteFrame(QByteArray& frame, const SBusRequestItem& item, int station) = 0;
    // The engine never calls it. It keeps its place in the order of the virtual operations.
    virtual unsigned reservedHook() = 0;
    // Sends `frame` and waits for the answer. `response` comes with the size that payload and checksum are
    // expected to have, empty for a write; after a good read it holds the payload and the checksum.
    virtual unsigned transceive(const SBusRequestItem& item, const QByteArray& frame, QByteArray& response,
                                const SBusRequest& request, bool read) = 0;

    // The command path. Offline: reported as SBusChannelError at once.
    void submitRequest(const SBusRequest& request);
    // The poll path. Offline, or with an equal request pending: dropped and not reported.
    void queueRequest(const SBusRequest& request);
    // Null when the channel disconnects.
    void setLink(CLink* newLink);
    // Runs the request at the front of the table, if there is one.
    void processNextRequest();

    // Writes a hex dump of `bytes` into the frame trace, line by line.
    static void logFrame(int channelId, int rtuId, Halvex::PacketType type, const char* bytes, int length);

protected:
    CLink* currentLink() const { return link.load(std::memory_order_acquire); }

    void executeRequest(SBusRequest& request);
    // The reason is written nowhere: the log has its fixed texts.
    void reportResult(unsigned code, const SBusRequest& request, CReply* reply, const QString& reason) const;

    // The caller holds the mutex.
    bool containsRequest(const SBusRequest& request) const;
    int removeRequest(const SBusRequest& request);

private:
    unsigned executeItem(const SBusRequest& request, const SBusRequestItem& item);
    unsigned executeRead(const SBusRequest& request, const SBusRequestItem& item, int station);
    unsigned executeWrite(const SBusRequest& request, const SBusRequestItem& item, int station);
    static void publish(const SBusRequest& request, const SBusRequestItem& item, const QByteArray& response);

    const SBusResultReporter reporter;
    QMutex mutex;
    SBusPendingTable pending;
    // Written by the channel's thread alone; producers read it to know whether the channel is online.
    std::atomic<CLink*> link{nullptr};
};
