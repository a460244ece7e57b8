#include "SBusSerialDriver.h"

#include "SerialTelegram.h"
#include "Telegram.h"

#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverLink/CLinkSerial.h>

#include <QElapsedTimer>

using Halvex::PacketType;
using sbus::serial::ReadAnswer;
using sbus::serial::WriteAnswer;

SBusSerialDriver::SBusSerialDriver(CChannel* owner) : SBusProtocolBase(owner) {}

unsigned SBusSerialDriver::checkResponse(const QByteArray&, const QByteArray&, const SBusRequest&,
                                         const SBusRequestItem&) {
    return SBusSuccess;
}

void SBusSerialDriver::buildReadFrame(QByteArray& frame, const SBusRequestItem& item, int station) {
    frame = sbus::serial::readFrame(item, station, transmitMode);
}

void SBusSerialDriver::buildWriteFrame(QByteArray& frame, const SBusRequestItem& item, int station) {
    frame = sbus::serial::writeFrame(item, station, transmitMode);
}

unsigned SBusSerialDriver::reservedHook() {
    return 0;
}

unsigned SBusSerialDriver::transceive(const SBusRequestItem&, const QByteArray& frame, QByteArray& response,
                                      const SBusRequest& request, bool read) {
    if (transmitMode == sbus::serial::breakMode)
        sendBreak();
    response.fill('\0', read
                            ? sbus::serial::readAnswerSize(response.size() - sbus::checksumSize, transmitMode)
                            : sbus::serial::writeAnswerSize(transmitMode));
    if (const unsigned code = sendFrame(request, frame))
        return code;
    if (response.isEmpty())
        return SBusSuccess;
    if (const unsigned code = awaitAnswer(response, request))
        return code;
    logWholeFrame(request, PacketType::Received, response);
    return read ? checkReadAnswer(response, request) : checkWriteAnswer(response, request);
}

void SBusSerialDriver::sendBreak() {
    if (currentLink()->kind() != CLink::serialKind)
        return;
    if (auto* const serial = dynamic_cast<CLinkSerial*>(currentLink()))
        serial->sendBreak(breakDelay);
}

// A station that says nothing costs its RTU the connection; a line that fails or breaks off in the middle
// costs the channel's, so that it is opened anew.
unsigned SBusSerialDriver::awaitAnswer(QByteArray& response, const SBusRequest& request) {
    constexpr int silenceMs = 20; // between two bytes of one answer
    const int timeOutMs = request.rtu->sessionTimeOut();
    int received = 0;
    QElapsedTimer time;
    time.start();
    if (currentLink()->rxMessage(response.data(), response.size(), received, timeOutMs, silenceMs) == -1) {
        disconnectRtuAndChannel(request);
        return SBusChannelError;
    }
    if (received == response.size())
        return SBusSuccess;
    const bool silent = received == 0 && time.elapsed() > timeOutMs;
    logWholeFrame(request, PacketType::Received, response);
    if (silent)
        disconnectRtu(request);
    else
        disconnectRtuAndChannel(request);
    return SBusTimeOut;
}

unsigned SBusSerialDriver::checkReadAnswer(QByteArray& response, const SBusRequest& request) {
    // What follows a wrong start is most likely there already; after a wrong checksum the rest of a longer
    // telegram may still be on its way.
    constexpr int drainAfterWrongStartMs = 1;
    constexpr int drainAfterWrongChecksumMs = 5000;
    switch (sbus::serial::checkReadAnswer(response, transmitMode)) {
    case ReadAnswer::Good:
        break;
    case ReadAnswer::NotAcknowledged:
        drainLink(drainAfterWrongStartMs);
        logProtocolError(request, QStringLiteral("Nak Error"), false);
        return SBusBadData;
    case ReadAnswer::FrameError:
        drainLink(drainAfterWrongStartMs);
        logProtocolError(request, QStringLiteral("Frame Error"), false);
        return SBusBadData;
    case ReadAnswer::ChecksumError:
        drainLink(drainAfterWrongChecksumMs);
        logProtocolError(request, QStringLiteral("CRC Error"), false);
        return SBusBadData;
    }
    response = sbus::serial::withoutStart(response, transmitMode);
    connectRtu(request);
    return SBusSuccess;
}

unsigned SBusSerialDriver::checkWriteAnswer(const QByteArray& response, const SBusRequest& request) {
    switch (sbus::serial::checkWriteAnswer(response, transmitMode)) {
    case WriteAnswer::Good:
        break;
    case WriteAnswer::ControlError:
        logProtocolError(request, QStringLiteral("Control Error"), false);
        return SBusBadData;
    case WriteAnswer::FrameError:
        logProtocolError(request, QStringLiteral("Frame Error"), true);
        return SBusBadData;
    case WriteAnswer::ChecksumError:
        logProtocolError(request, QStringLiteral("CRC Error"), true);
        return SBusBadData;
    }
    connectRtu(request);
    return SBusSuccess;
}

void SBusSerialDriver::drainLink(int timeOutMs) {
    constexpr int scratchSize = 4096;
    char scratch[scratchSize] = {};
    int received = 0;
    currentLink()->receive(scratch, scratchSize, received, timeOutMs);
}
