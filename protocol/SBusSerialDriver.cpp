#include "SBusSerialDriver.h"

#include "SBusExchange.h"
#include "Telegram.h"

#include <HalvexDriverLink/CLinkSerial.h>

#include <QElapsedTimer>

using sbus::serial::Mode;
using sbus::serial::ReadAnswer;
using sbus::serial::WriteAnswer;

namespace {

// Discards what arrives next, for at most `timeOutMs`. Whether that succeeds makes no difference.
void drain(CLink& link, int timeOutMs) {
    constexpr int scratchSize = 4096;
    char scratch[scratchSize] = {};
    int received = 0;
    link.receive(scratch, scratchSize, received, timeOutMs);
}

} // namespace

SBusSerialDriver::SBusSerialDriver(CChannel* owner) : SBusProtocolBase(owner) {}

unsigned SBusSerialDriver::checkResponse(const QByteArray&, const QByteArray&, const SBusRequest&,
                                         const SBusRequestItem&) {
    return SBusSuccess;
}

void SBusSerialDriver::buildReadFrame(QByteArray& frame, const SBusRequestItem& item, int station) {
    frame = sbus::serial::readFrame(item, station, mode());
}

void SBusSerialDriver::buildWriteFrame(QByteArray& frame, const SBusRequestItem& item, int station) {
    frame = sbus::serial::writeFrame(item, station, mode());
}

unsigned SBusSerialDriver::reservedHook() {
    return 0;
}

unsigned SBusSerialDriver::transceive(const SBusRequestItem&, const QByteArray& frame, QByteArray& response,
                                      const SBusRequest& request, bool read) {
    const SBusExchange exchange(*currentLink(), request);
    if (mode() == Mode::Break)
        sendBreak();
    response.fill('\0', read ? sbus::serial::readAnswerSize(response.size() - sbus::checksumSize, mode())
                             : sbus::serial::writeAnswerSize(mode()));
    if (const unsigned code = exchange.send(frame))
        return code;
    if (response.isEmpty())
        return SBusSuccess;
    if (const unsigned code = awaitAnswer(response, exchange))
        return code;
    exchange.traceReceived(response);
    return read ? checkReadAnswer(response, exchange) : checkWriteAnswer(response, exchange);
}

// The exchange goes on whether or not the device takes the break.
void SBusSerialDriver::sendBreak() const {
    if (currentLink()->kind() != CLink::serialKind)
        return;
    if (auto* const serial = dynamic_cast<CLinkSerial*>(currentLink()))
        serial->sendBreak(breakDelay);
}

// Without any answer the RTU counts as disconnected; after a failure of the link or an answer that broke off
// the channel does too, and opens its link anew.
unsigned SBusSerialDriver::awaitAnswer(QByteArray& response, const SBusExchange& exchange) {
    constexpr int silenceMs = 20; // between two bytes of one answer
    const int timeOutMs = exchange.timeOutMs();
    int received = 0;
    QElapsedTimer time;
    time.start();
    if (exchange.link.rxMessage(response.data(), response.size(), received, timeOutMs, silenceMs) == -1) {
        exchange.disconnectRtuAndChannel();
        return SBusChannelError;
    }
    if (received == response.size())
        return SBusSuccess;
    const bool silent = received == 0 && time.elapsed() > timeOutMs;
    exchange.traceReceived(response);
    if (silent)
        exchange.disconnectRtu();
    else
        exchange.disconnectRtuAndChannel();
    return SBusTimeOut;
}

unsigned SBusSerialDriver::checkReadAnswer(QByteArray& response, const SBusExchange& exchange) const {
    constexpr int drainAfterWrongStartMs = 1;
    constexpr int drainAfterWrongChecksumMs = 5000;
    switch (sbus::serial::checkReadAnswer(response, mode())) {
    case ReadAnswer::Good:
        break;
    case ReadAnswer::NotAcknowledged:
        drain(exchange.link, drainAfterWrongStartMs);
        exchange.traceErrorInSameEntry(QStringLiteral("Nak Error"));
        return SBusBadData;
    case ReadAnswer::FrameError:
        drain(exchange.link, drainAfterWrongStartMs);
        exchange.traceErrorInSameEntry(QStringLiteral("Frame Error"));
        return SBusBadData;
    case ReadAnswer::ChecksumError:
        drain(exchange.link, drainAfterWrongChecksumMs);
        exchange.traceErrorInSameEntry(QStringLiteral("CRC Error"));
        return SBusBadData;
    }
    response = sbus::serial::withoutStart(response, mode());
    exchange.connectRtu();
    return SBusSuccess;
}

unsigned SBusSerialDriver::checkWriteAnswer(const QByteArray& response, const SBusExchange& exchange) const {
    switch (sbus::serial::checkWriteAnswer(response, mode())) {
    case WriteAnswer::Good:
        break;
    case WriteAnswer::ControlError:
        exchange.traceErrorInSameEntry(QStringLiteral("Control Error"));
        return SBusBadData;
    case WriteAnswer::FrameError:
        exchange.traceError(QStringLiteral("Frame Error"));
        return SBusBadData;
    case WriteAnswer::ChecksumError:
        exchange.traceError(QStringLiteral("CRC Error"));
        return SBusBadData;
    }
    exchange.connectRtu();
    return SBusSuccess;
}
