#pragma once

#include "SBusRequest.h"

#include <QByteArray>
#include <QString>

class CLink;

// What every framing does around the exchange of one telegram: send it, wait, write the frame trace, set the
// connection flags of the request's RTU and of its channel. Made for one exchange, by the framing that
// carries it out, on the channel's thread. Owns nothing; link, request and its RTU outlive it.
class SBusExchange {
public:
    SBusExchange(CLink& openLink, const SBusRequest& exchangedRequest);

    // Sends `frame` and traces it. SBusSuccess, or SBusChannelError with RTU and channel disconnected.
    unsigned send(const QByteArray& frame) const;
    // How long the RTU may take to answer.
    int timeOutMs() const;

    // A header line that starts an entry of the trace, and the dump of `bytes`.
    void traceReceived(const QByteArray& bytes) const;
    // The header line alone.
    void traceReceivedHeader() const;
    // What is wrong with the answer: as an entry of its own, or as one more line of the entry before.
    void traceError(const QString& text) const;
    void traceErrorInSameEntry(const QString& text) const;

    void connectRtu() const;
    void disconnectRtu() const;
    // The channel then opens its link anew.
    void disconnectRtuAndChannel() const;

    CLink& link;

private:
    const SBusRequest& request;
};
