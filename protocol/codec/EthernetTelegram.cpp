#include "EthernetTelegram.h"

#include "CommandCode.h"
#include "Telegram.h"

#include <QtEndian>

#include <array>

namespace sbus::ethernet {
namespace {

constexpr char version = 1;
constexpr quint8 responseAttribute = 1;
constexpr quint8 acknowledgeAttribute = 2;

constexpr int versionOffset = lengthSize;
constexpr int sequenceOffset = 6;
constexpr int attributeOffset = 8;

// The header, with room for the length, which is known at the end.
QByteArray beginFrame(quint16 sequence) {
    constexpr int readFrameSize = 16;
    QByteArray frame;
    frame.reserve(readFrameSize);
    frame.append(headerSize, '\0'); // the protocol type is 0, and so is a request's attribute
    frame[versionOffset] = version;
    qToBigEndian(sequence, frame.data() + sequenceOffset);
    return frame;
}

void endFrame(QByteArray& frame) {
    qToBigEndian<qint32>(frame.size() + checksumSize, frame.data());
    appendChecksum(frame);
}

// 0 where the telegram ends before the field does.
template <typename Number>
Number numberAt(const QByteArray& telegram, int offset) {
    const bool isThere = telegram.size() >= offset + static_cast<int>(sizeof(Number));
    return isThere ? qFromBigEndian<Number>(telegram.constData() + offset) : Number{0};
}

quint16 sequenceOf(const QByteArray& telegram) {
    return numberAt<quint16>(telegram, sequenceOffset);
}

quint8 attributeOf(const QByteArray& telegram) {
    return numberAt<quint8>(telegram, attributeOffset);
}

// In the two bytes before the checksum, whatever the length. Of a telegram with an attribute, which has nine
// bytes or more.
quint16 acknowledgeCodeOf(const QByteArray& telegram) {
    constexpr int codeSize = 2;
    return numberAt<quint16>(telegram, telegram.size() - checksumSize - codeSize);
}

AnswerCheck checkChecksum(const QByteArray& telegram) {
    using Result = AnswerCheck::Result;
    return {hasValidChecksum(telegram) ? Result::Good : Result::ChecksumError};
}

} // namespace

QByteArray readFrame(const SBusRequestItem& item, int station, quint16 sequence) {
    QByteArray frame = beginFrame(sequence);
    appendReadBody(frame, item, station);
    endFrame(frame);
    return frame;
}

QByteArray writeFrame(const SBusRequestItem& item, int station, quint16 sequence) {
    if (!carriesSequence(item.command)) {
        QByteArray bareFrame = item.data;
        appendChecksum(bareFrame);
        return bareFrame;
    }
    QByteArray frame = beginFrame(sequence);
    appendWriteBody(frame, item, station);
    endFrame(frame);
    return frame;
}

bool carriesSequence(quint32 command) {
    return classOf(command) != CommandClass::WriteClock;
}

qint32 announcedLength(const char* telegram) {
    return qFromBigEndian<qint32>(telegram);
}

AnswerCheck checkReadAnswer(const QByteArray& telegram, quint16 expectedSequence) {
    using Result = AnswerCheck::Result;
    if (sequenceOf(telegram) != expectedSequence)
        return {Result::InvalidSequence};
    const unsigned attribute = attributeOf(telegram);
    if (attribute == responseAttribute)
        return checkChecksum(telegram);
    const unsigned code = attribute == acknowledgeAttribute ? acknowledgeCodeOf(telegram) : 0U;
    return {Result::AcknowledgeError, code != 0 ? code : attribute};
}

AnswerCheck checkWriteAnswer(const QByteArray& telegram, quint16 expectedSequence) {
    using Result = AnswerCheck::Result;
    if (sequenceOf(telegram) != expectedSequence)
        return {Result::InvalidSequence};
    const unsigned attribute = attributeOf(telegram);
    if (attribute != acknowledgeAttribute)
        return {Result::AcknowledgeError, attribute};
    if (const quint16 code = acknowledgeCodeOf(telegram))
        return {Result::AcknowledgeError, code};
    return checkChecksum(telegram);
}

QByteArray withoutHeader(QByteArray telegram) {
    telegram.remove(0, headerSize);
    return telegram;
}

} // namespace sbus::ethernet
