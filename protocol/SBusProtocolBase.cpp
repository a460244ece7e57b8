#include "SBusProtocolBase.h"

#include "CommandCode.h"
#include "Decoding.h"
#include "HexDump.h"
#include "MediaTable.h"
#include "SBusValuePublisher.h"
#include "Telegram.h"

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CLogger.h>
#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverLink/CLink.h>

#include <QMutexLocker>

#include <algorithm>
#include <utility>

using Halvex::PacketType;

SBusProtocolBase::SBusProtocolBase(CChannel* owner) : QObject(owner), channel(owner) {}

SBusProtocolBase::~SBusProtocolBase() = default;

void SBusProtocolBase::submitRequest(const SBusRequest& request) {
    {
        const QMutexLocker lock(&mutex);
        if (currentLink() != nullptr) {
            // Made first: without memory for it the table stays as it is.
            std::list<SBusRequest> newest{request};
            removeRequest(request);
            pending.splice(pending.begin(), newest);
            return;
        }
    }
    // Reported with the mutex released: whoever is told may ask for the next request at once.
    reportResult(SBusChannelError, request, request.reply, QStringLiteral("Channel Offline"));
}

void SBusProtocolBase::queueRequest(const SBusRequest& request) {
    const QMutexLocker lock(&mutex);
    if (currentLink() != nullptr && !containsRequest(request))
        pending.push_back(request);
}

void SBusProtocolBase::setLink(CLink* newLink) {
    link.store(newLink, std::memory_order_release);
}

bool SBusProtocolBase::containsRequest(const SBusRequest& request) const {
    return std::any_of(pending.cbegin(), pending.cend(),
                       [&](const SBusRequest& other) { return other.isEqualTo(request); });
}

int SBusProtocolBase::removeRequest(const SBusRequest& request) {
    const std::size_t before = pending.size();
    pending.remove_if([&](const SBusRequest& other) { return other.isEqualTo(request); });
    return static_cast<int>(before - pending.size());
}

void SBusProtocolBase::processNextRequest() {
    QMutexLocker lock(&mutex);
    if (pending.empty())
        return;
    SBusRequest request = std::move(pending.front());
    pending.pop_front();
    lock.unlock();
    executeRequest(request);
}

void SBusProtocolBase::executeRequest(SBusRequest& request) {
    if (currentLink() == nullptr) {
        if (request.reply != nullptr)
            reportResult(SBusChannelError, request, request.reply, QString());
        return;
    }
    if (request.rtu != nullptr) {
        for (const SBusRequestItem& item : std::as_const(request.items)) {
            const unsigned code = executeItem(request, item);
            if (code != SBusSuccess) {
                reportResult(code, request, request.reply, QString());
                return;
            }
        }
    }
    reportResult(SBusSuccess, request, request.reply, QString());
    if (request.rtu != nullptr)
        request.rtu->PutDatapoints();
}

unsigned SBusProtocolBase::executeItem(const SBusRequest& request, const SBusRequestItem& item) {
    const int station = request.rtu->GetRtuInfo().scan.stationAddress.toInt(nullptr, 10);
    switch (sbus::classOf(item.command)) {
    case sbus::CommandClass::ReadBits:
    case sbus::CommandClass::ReadWords:
        return executeRead(request, item, station);
    case sbus::CommandClass::WriteBits:
    case sbus::CommandClass::WriteWords:
    case sbus::CommandClass::WriteClock:
        return executeWrite(request, item, station);
    case sbus::CommandClass::None:
        break;
    }
    return SBusSuccess;
}

unsigned SBusProtocolBase::executeRead(const SBusRequest& request, const SBusRequestItem& item, int station) {
    QByteArray frame;
    buildReadFrame(frame, item, station);
    QByteArray response(sbus::readPayloadSize(item) + sbus::checksumSize, '\0');
    if (const unsigned code = transceive(item, frame, response, request, true))
        return code;
    if (const unsigned code = checkResponse(frame, response, request, item))
        return code;
    publish(request, item, response);
    // The elements that a short answer leaves out must not pass for read.
    return response.size() < sbus::readPayloadSize(item) + sbus::checksumSize ? SBusBadData2 : SBusSuccess;
}

unsigned SBusProtocolBase::executeWrite(const SBusRequest& request, const SBusRequestItem& item,
                                        int station) {
    QByteArray frame;
    buildWriteFrame(frame, item, station);
    QByteArray response;
    return transceive(item, frame, response, request, false);
}

// Hands over as many values as the answer holds.
void SBusProtocolBase::publish(const SBusRequest& request, const SBusRequestItem& item,
                               const QByteArray& response) {
    auto* const publisher = dynamic_cast<SBusValuePublisher*>(request.rtu);
    if (publisher == nullptr)
        return;
    const QString media = sbus::mediaForReadCommand(item.command);
    const quint32 elements = item.count + 1;
    if (sbus::classOf(item.command) == sbus::CommandClass::ReadBits)
        publisher->publishStatusValues(item.address, media, sbus::decodeBits(response, elements));
    else
        publisher->publishAnalogValues(item.address, media, sbus::decodeWords(response, elements));
}

void SBusProtocolBase::logFrame(int channelId, int rtuId, PacketType type, const char* bytes, int length) {
    CLogger* const logger = CLogger::GetInstance();
    sbus::HexDump dump(bytes, length);
    while (dump.next())
        logger->writeConPacket(channelId, rtuId, type, dump.line(), false);
}

unsigned SBusProtocolBase::sendFrame(const SBusRequest& request, const QByteArray& frame) {
    constexpr int timeOutMs = 5000; // for a line that takes no more bytes
    if (currentLink()->send(frame.constData(), frame.size(), timeOutMs) != 0) {
        disconnectRtuAndChannel(request);
        return SBusChannelError;
    }
    logWholeFrame(request, PacketType::Sent, frame);
    return SBusSuccess;
}

void SBusProtocolBase::logWholeFrame(const SBusRequest& request, PacketType type, const QByteArray& bytes) {
    logFrameHeader(request, type);
    logFrame(request.rtu->chennelId(), request.rtu->GetRtuId(), type, bytes.constData(), bytes.size());
}

void SBusProtocolBase::logFrameHeader(const SBusRequest& request, PacketType type) {
    const QString text =
        type == PacketType::Sent ? QStringLiteral("<< Send frame ") : QStringLiteral(">> Receive frame ");
    CLogger::GetInstance()->writeConPacket(request.rtu->chennelId(), request.rtu->GetRtuId(), type, text,
                                           true);
}

void SBusProtocolBase::logProtocolError(const SBusRequest& request, const QString& text, bool startsEntry) {
    CLogger::GetInstance()->writeConPacket(request.rtu->chennelId(), request.rtu->GetRtuId(),
                                           PacketType::ProtocolError, text, startsEntry);
}

void SBusProtocolBase::disconnectRtu(const SBusRequest& request) {
    request.rtu->SetConnect(false, true);
}

void SBusProtocolBase::disconnectRtuAndChannel(const SBusRequest& request) {
    disconnectRtu(request);
    request.rtu->GetChannel()->SetConnect(false);
}

void SBusProtocolBase::connectRtu(const SBusRequest& request) {
    request.rtu->SetConnect(true, true);
}
