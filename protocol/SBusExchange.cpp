#include "SBusExchange.h"

#include "SBusProtocolBase.h"
#include "SBusPublishingRtu.h"

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CLogger.h>
#include <HalvexDriverLink/CLink.h>

using Halvex::PacketType;

namespace {

void trace(const CRtu& rtu, PacketType type, const QString& text, bool startsEntry) {
    CLogger::GetInstance()->writeConPacket(rtu.chennelId(), rtu.GetRtuId(), type, text, startsEntry);
}

void traceBytes(const CRtu& rtu, PacketType type, const QByteArray& bytes) {
    SBusProtocolBase::logFrame(rtu.chennelId(), rtu.GetRtuId(), type, bytes.constData(), bytes.size());
}

} // namespace

SBusExchange::SBusExchange(CLink& openLink, const SBusRequest& exchangedRequest)
    : link(openLink), request(exchangedRequest) {}

unsigned SBusExchange::send(const QByteArray& frame) const {
    constexpr int sendTimeOutMs = 5000;
    if (link.send(frame.constData(), frame.size(), sendTimeOutMs) != 0) {
        disconnectRtuAndChannel();
        return SBusChannelError;
    }
    trace(*request.rtu, PacketType::Sent, QStringLiteral("<< Send frame "), true);
    traceBytes(*request.rtu, PacketType::Sent, frame);
    return SBusSuccess;
}

int SBusExchange::timeOutMs() const {
    return request.rtu->sessionTimeOut();
}

void SBusExchange::traceReceived(const QByteArray& bytes) const {
    traceReceivedHeader();
    traceBytes(*request.rtu, PacketType::Received, bytes);
}

void SBusExchange::traceReceivedHeader() const {
    trace(*request.rtu, PacketType::Received, QStringLiteral(">> Receive frame "), true);
}

void SBusExchange::traceError(const QString& text) const {
    trace(*request.rtu, PacketType::ProtocolError, text, true);
}

void SBusExchange::traceErrorInSameEntry(const QString& text) const {
    trace(*request.rtu, PacketType::ProtocolError, text, false);
}

void SBusExchange::connectRtu() const {
    request.rtu->SetConnect(true, true);
}

void SBusExchange::disconnectRtu() const {
    request.rtu->SetConnect(false, true);
}

void SBusExchange::disconnectRtuAndChannel() const {
    disconnectRtu();
    request.rtu->GetChannel()->SetConnect(false);
}
