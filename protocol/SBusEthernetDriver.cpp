#include "SBusEthernetDriver.h"

#include "CommandCode.h"
#include "EthernetTelegram.h"
#include "SBusExchange.h"

#include <HalvexDriverLink/CLink.h>

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

using sbus::ethernet::AnswerCheck;

namespace {

void traceWhatIsWrong(const AnswerCheck& check, const SBusExchange& exchange) {
    switch (check.result) {
    case AnswerCheck::Result::Good:
        break;
    case AnswerCheck::Result::InvalidSequence:
        exchange.traceError(QStringLiteral("Invaild Sequence"));
        break;
    case AnswerCheck::Result::AcknowledgeError:
        exchange.traceError(QStringLiteral("Ack Error: %1").arg(check.value));
        break;
    case AnswerCheck::Result::ChecksumError:
        exchange.traceError(QStringLiteral("CRC Error"));
        break;
    }
}

} // namespace

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
    const SBusExchange exchange(*currentLink(), request);
    if (const unsigned code = exchange.send(frame))
        return code;
    QByteArray telegram;
    if (const unsigned code = awaitTelegram(telegram, response, exchange))
        return code;
    exchange.traceReceived(telegram);
    if (!sbus::isRead(item.command))
        return checkWriteAnswer(telegram, exchange);
    const unsigned code = checkReadAnswer(telegram, exchange);
    if (code == SBusSuccess)
        response = sbus::ethernet::withoutHeader(std::move(telegram));
    return code;
}

unsigned SBusEthernetDriver::awaitTelegram(QByteArray& telegram, const QByteArray& response,
                                           const SBusExchange& exchange) {
    QElapsedTimer time;
    time.start();
    ReceiveArea area{};
    int arrived = 0;
    if (exchange.link.receive(area.data(), areaSize, arrived, exchange.timeOutMs()) == -1 ||
        arrived < sbus::ethernet::lengthSize) {
        exchange.disconnectRtuAndChannel();
        return SBusChannelError;
    }
    const qint32 length = sbus::ethernet::announcedLength(area.data());
    if (length > arrived) {
        if (const unsigned code = awaitRest(area, arrived, time, response, exchange))
            return code;
    }
    telegram = QByteArray(area.data(), std::max(length, 0));
    return SBusSuccess;
}

// One more datagram may bring the rest of a telegram; no more than one is waited for. What is traced when the
// rest is not there is the buffer of the caller, not what has arrived.
unsigned SBusEthernetDriver::awaitRest(ReceiveArea& area, int arrived, const QElapsedTimer& time,
                                       const QByteArray& response, const SBusExchange& exchange) {
    const int timeOutMs = exchange.timeOutMs();
    const int space = areaSize - arrived;
    int more = 0;
    if (space > 0 && exchange.link.receive(area.data() + arrived, space, more, timeOutMs) == -1) {
        exchange.disconnectRtuAndChannel();
        return SBusChannelError;
    }
    if (arrived + more == sbus::ethernet::announcedLength(area.data()))
        return SBusSuccess;
    const bool silent = more == 0 && time.elapsed() > timeOutMs;
    if (response.isEmpty())
        exchange.traceReceivedHeader();
    else
        exchange.traceReceived(response);
    if (silent)
        exchange.disconnectRtu();
    else
        exchange.disconnectRtuAndChannel();
    return SBusTimeOut;
}

unsigned SBusEthernetDriver::checkReadAnswer(const QByteArray& telegram, const SBusExchange& exchange) const {
    const AnswerCheck check = sbus::ethernet::checkReadAnswer(telegram, expectedSequence);
    traceWhatIsWrong(check, exchange);
    if (check.result != AnswerCheck::Result::Good) {
        exchange.disconnectRtu();
        return SBusBadData;
    }
    exchange.connectRtu();
    return SBusSuccess;
}

// After a wrong checksum the RTU stays as it was.
unsigned SBusEthernetDriver::checkWriteAnswer(const QByteArray& telegram,
                                              const SBusExchange& exchange) const {
    const AnswerCheck check = sbus::ethernet::checkWriteAnswer(telegram, expectedSequence);
    traceWhatIsWrong(check, exchange);
    if (check.result == AnswerCheck::Result::Good) {
        exchange.connectRtu();
        return SBusSuccess;
    }
    if (check.result != AnswerCheck::Result::ChecksumError)
        exchange.disconnectRtu();
    return SBusBadData;
}
