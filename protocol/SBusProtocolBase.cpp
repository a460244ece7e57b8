#include "SBusProtocolBase.h"

#include "CommandCode.h"
#include "Decoding.h"
#include "HexDump.h"
#include "MediaTable.h"
#include "SBusPublishingRtu.h"
#include "Telegram.h"

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CLogger.h>

#include <QMutexLocker>

#include <optional>
#include <utility>

SBusProtocolBase::SBusProtocolBase(CChannel* owner) : QObject(owner), reporter(owner) {}

SBusProtocolBase::~SBusProtocolBase() = default;

void SBusProtocolBase::submitRequest(const SBusRequest& request) {
    {
        const QMutexLocker lock(&mutex);
        if (currentLink() != nullptr) {
            pending.putFirst(request);
            return;
        }
    }
    // The mutex is free again: whoever is told of the result may hand over the next request at once.
    reportResult(SBusChannelError, request, request.reply, QStringLiteral("Channel Offline"));
}

void SBusProtocolBase::queueRequest(const SBusRequest& request) {
    const QMutexLocker lock(&mutex);
    if (currentLink() != nullptr && !containsRequest(request))
        pending.putLast(request);
}

void SBusProtocolBase::setLink(CLink* newLink) {
    link.store(newLink, std::memory_order_release);
}

bool SBusProtocolBase::containsRequest(const SBusRequest& request) const {
    return pending.contains(request);
}

int SBusProtocolBase::removeRequest(const SBusRequest& request) {
    return pending.remove(request);
}

void SBusProtocolBase::processNextRequest() {
    QMutexLocker lock(&mutex);
    std::optional<SBusRequest> request = pending.takeFirst();
    lock.unlock();
    if (request)
        executeRequest(*request);
}

void SBusProtocolBase::reportResult(unsigned code, const SBusRequest& request, CReply* reply,
                                    const QString& /*reason*/) const {
    reporter.report(code, request, reply);
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
    // A short answer leaves elements out, whose points keep older values: the request counts as failed.
    return response.size() < sbus::readPayloadSize(item) + sbus::checksumSize ? SBusBadData2 : SBusSuccess;
}

unsigned SBusProtocolBase::executeWrite(const SBusRequest& request, const SBusRequestItem& item,
                                        int station) {
    QByteArray frame;
    buildWriteFrame(frame, item, station);
    QByteArray response;
    return transceive(item, frame, response, request, false);
}

// Hands over as many values as the answer holds, at most those that were asked for.
void SBusProtocolBase::publish(const SBusRequest& request, const SBusRequestItem& item,
                               const QByteArray& response) {
    const QString media = sbus::mediaForReadCommand(item.command);
    const quint32 elements = item.count + 1;
    if (sbus::classOf(item.command) == sbus::CommandClass::ReadBits)
        request.rtu->publishStatusValues(item.address, media, sbus::decodeBits(response, elements));
    else
        request.rtu->publishAnalogValues(item.address, media, sbus::decodeWords(response, elements));
}

void SBusProtocolBase::logFrame(int channelId, int rtuId, Halvex::PacketType type, const char* bytes,
                                int length) {
    CLogger* const logger = CLogger::GetInstance();
    sbus::forEachHexLine(bytes, length, [=](const QString& line) {
        logger->writeConPacket(channelId, rtuId, type, line, false);
    });
}
