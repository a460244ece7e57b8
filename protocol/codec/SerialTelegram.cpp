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

QByteArray beginFrame(Mode mode) {
    QByteArray frame;
    if (mode == Mode::Data)
        frame.append(synchronisation).append(requestAttribute);
    return frame;
}

bool startsWith(const QByteArray& answer, char attribute) {
    return answer.size() >= startSize && answer.at(0) == synchronisation && answer.at(1) == attribute;
}

} // namespace

Mode modeOf(int number) {
    constexpr int dataModeNumber = 0;
    constexpr int breakModeNumber = 1;
    if (number == dataModeNumber)
        return Mode::Data;
    return number == breakModeNumber ? Mode::Break : Mode::Other;
}

QByteArray readFrame(const SBusRequestItem& item, int station, Mode mode) {
    QByteArray frame = beginFrame(mode);
    appendReadBody(frame, item, station);
    appendChecksum(frame);
    return frame;
}

QByteArray writeFrame(const SBusRequestItem& item, int station, Mode mode) {
    QByteArray frame = beginFrame(mode);
    appendWriteBody(frame, item, station);
    appendChecksum(frame);
    return frame;
}

int readAnswerSize(int payloadSize, Mode mode) {
    return payloadSize + checksumSize + (mode == Mode::Data ? startSize : 0);
}

int writeAnswerSize(Mode mode) {
    constexpr int acknowledgeCodeSize = 2;
    if (mode == Mode::Data)
        return startSize + acknowledgeCodeSize + checksumSize;
    return mode == Mode::Break ? 1 : 0;
}

ReadAnswer checkReadAnswer(const QByteArray& answer, Mode mode) {
    if (mode == Mode::Data && !startsWith(answer, responseAttribute)) {
        const bool refused = answer.size() >= startSize && answer.at(1) == acknowledgeAttribute;
        return refused ? ReadAnswer::NotAcknowledged : ReadAnswer::FrameError;
    }
    return hasValidChecksum(answer) ? ReadAnswer::Good : ReadAnswer::ChecksumError;
}

WriteAnswer checkWriteAnswer(const QByteArray& answer, Mode mode) {
    if (mode == Mode::Break)
        return answer == QByteArray(1, acknowledge) ? WriteAnswer::Good : WriteAnswer::ControlError;
    if (mode != Mode::Data)
        return WriteAnswer::Good;
    if (!startsWith(answer, acknowledgeAttribute))
        return WriteAnswer::FrameError;
    return hasValidChecksum(answer) ? WriteAnswer::Good : WriteAnswer::ChecksumError;
}

QByteArray withoutStart(const QByteArray& answer, Mode mode) {
    return mode == Mode::Data ? answer.mid(startSize) : answer;
}

} // namespace sbus::serial
