#include "SBusEthernetDriver.h"

#include "CommandCode.h"
#include "EthernetTelegram.h"

#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverLink/CLink.h>

#include <QElapsedTimer>

using Halvex::PacketType;
using sbus::ethernet::AnswerCheck;

SBusEthernetDriver::SBusEthernetDriver(CChannel* owner) : SBusProtocolBase(owner) {}

unsigned SBusEthernetDriver::checkResponse(const QByteArray&, const QByteArray&, const SBusRequest&,
                                           const SBusRequestItem&) {
    return SBusSuccess;
}

void SBusEthernetDriver::buildReadFrame(QByteArray& frame, const SBusRequestItem& item, int station) {
    expectedSequence = nextSequence++;
    frame = sbus::ethernet::readFrame(item, station, expectedSequence);
}

void SBusEthernetDriver::buildWriteFrame(QByteArray& frame, const SBusRequestItem& item, int station) {
    expectedSequence = nextSequence;
    if (sbus::ethernet::carriesSequence(item.command))
        ++nextSequence;
    frame = sbus::ethernet::writeFrame(item, station, expectedSequence);
}

unsigned SBusEthernetDriver::reservedHook() {
    return 0;
}

unsigned SBusEthernetDriver::transceive(const SBusRequestItem& item, const QByteArray& frame,
                                        QByteArray& response, const SBusRequest& request, bool /*read*/) {
    if (const unsigned code = sendFrame(request, frame))
        return code;
    QByteArray telegram;
    if (const unsigned code = awaitAnswer(telegram, response, request))
        return code;
    logWholeFrame(request, PacketType::Received, telegram);
    const bool read = sbus::isRead(item.command);
    if (const unsigned code = checkAnswer(telegram, request, read))
        return code;
    if (read)
        response = sbus::ethernet::withoutHeader(telegram);
    connectRtu(request);
    return SBusSuccess;
}

unsigned SBusEthernetDriver::awaitAnswer(QByteArray& telegram, const QByteArray& response,
                                         const SBusRequest& request) {
    constexpr int capacity = 1024; // no telegram is longer
    QElapsedTimer time;
    time.start();
    QByteArray area(capacity, '\0');
    int arrived = 0;
    if (currentLink()->receive(area.data(), capacity, arrived, request.rtu->sessionTimeOut()) == -1 ||
        arrived < sbus::ethernet::lengthSize) {
        disconnectRtuAndChannel(request);
        return SBusChannelError;
    }
    const qint32 length = sbus::ethernet::announcedLength(area);
    if (length > arrived) {
        if (const unsigned code = awaitRest(area, arrived, time, response, request))
            return code;
    }
    area.truncate(length);
    telegram = area;
    return SBusSuccess;
}

// One more datagram may bring the rest of a telegram; no more than one is waited for.
unsigned SBusEthernetDriver::awaitRest(QByteArray& area, int arrived, const QElapsedTimer& time,
                                       const QByteArray& response, const SBusRequest& request) {
    const int timeOutMs = request.rtu->sessionTimeOut();
    const int space = area.size() - arrived;
    int more = 0;
    if (space > 0 && currentLink()->receive(area.data() + arrived, space, more, timeOutMs) == -1) {
        disconnectRtuAndChannel(request);
        return SBusChannelError;
    }
    if (arrived + more == sbus::ethernet::announcedLength(area))
        return SBusSuccess;
    const bool silent = more == 0 && time.elapsed() > timeOutMs;
    logFrameHeader(request, PacketType::Received);
    if (!response.isEmpty())
        logFrame(request.rtu->chennelId(), request.rtu->GetRtuId(), PacketType::Received,
                 response.constData(), response.size());
    if (silent)
        disconnectRtu(request);
    else
        disconnectRtuAndChannel(request);
    return SBusTimeOut;
}

unsigned SBusEthernetDriver::checkAnswer(const QByteArray& telegram, const SBusRequest& request, bool read) {
    const AnswerCheck check = read ? sbus::ethernet::checkReadAnswer(telegram, expectedSequence)
                                   : sbus::ethernet::checkWriteAnswer(telegram, expectedSequence);
    switch (check.result) {
    case AnswerCheck::Result::Good:
        return SBusSuccess;
    case AnswerCheck::Result::InvalidSequence:
        logProtocolError(request, QStringLiteral("Invaild Sequence"), true);
        break;
    case AnswerCheck::Result::AcknowledgeError:
        logProtocolError(request, QStringLiteral("Ack Error: %1").arg(check.value), true);
        break;
    case AnswerCheck::Result::ChecksumError:
        logProtocolError(request, QStringLiteral("CRC Error"), true);
        // The write itself may well have been carried out: the RTU's flag stays.
        if (!read)
            return SBusBadData;
        break;
    }
    disconnectRtu(request);
    return SBusBadData;
}
