#include "SerialTelegram.h"

#include "Telegram.h"

namespace sbus::serial {
namespace {

constexpr char synchronisation = '\xB5';
constexpr char requestAttribute = '\x00';
constexpr char responseAttribute = '\x01';
constexpr char acknowledgeAttribute = '\x02';
constexpr char acknowledge = '\x06'; // Break Mode's whole answer to a write
constexpr int startSize = 2;         // synchronisation byte and attribute

QByteArray framed(const QByteArray& body, int mode) {
    QByteArray frame;
    if (mode == dataMode)
        frame.append(synchronisation).append(requestAttribute);
    frame.append(body);
    appendChecksum(frame);
    return frame;
}

bool startsWith(const QByteArray& answer, char attribute) {
    return answer.size() >= startSize && answer.at(0) == synchronisation && answer.at(1) == attribute;
}

} // namespace

QByteArray readFrame(const SBusRequestItem& item, int station, int mode) {
    return framed(readBody(item, station), mode);
}

QByteArray writeFrame(const SBusRequestItem& item, int station, int mode) {
    return framed(writeBody(item, station), mode);
}

int readAnswerSize(int payloadSize, int mode) {
    return payloadSize + checksumSize + (mode == dataMode ? startSize : 0);
}

int writeAnswerSize(int mode) {
    constexpr int acknowledgeCodeSize = 2;
    if (mode == dataMode)
        return startSize + acknowledgeCodeSize + checksumSize;
    return mode == breakMode ? 1 : 0;
}

ReadAnswer checkReadAnswer(const QByteArray& answer, int mode) {
    if (mode == dataMode && !startsWith(answer, responseAttribute)) {
        const bool refused = answer.size() >= startSize && answer.at(1) == acknowledgeAttribute;
        return refused ? ReadAnswer::NotAcknowledged : ReadAnswer::FrameError;
    }
    return hasValidChecksum(answer) ? ReadAnswer::Good : ReadAnswer::ChecksumError;
}

WriteAnswer checkWriteAnswer(const QByteArray& answer, int mode) {
    if (mode == breakMode)
        return answer == QByteArray(1, acknowledge) ? WriteAnswer::Good : WriteAnswer::ControlError;
    if (mode != dataMode)
        return WriteAnswer::Good;
    if (!startsWith(answer, acknowledgeAttribute))
        return WriteAnswer::FrameError;
    return hasValidChecksum(answer) ? WriteAnswer::Good : WriteAnswer::ChecksumError;
}

QByteArray withoutStart(const QByteArray& answer, int mode) {
    return mode == dataMode ? answer.mid(startSize) : answer;
}

} // namespace sbus::serial
