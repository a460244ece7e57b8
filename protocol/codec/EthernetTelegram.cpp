#include "EthernetTelegram.h"

#include "BigEndian.h"
#include "CommandCode.h"
#include "Telegram.h"

namespace sbus::ethernet {
namespace {

constexpr quint8 version = 1;
constexpr quint8 protocolType = 0;
constexpr quint8 requestAttribute = 0;
constexpr quint8 responseAttribute = 1;
constexpr quint8 acknowledgeAttribute = 2;

QByteArray framed(const QByteArray& body, quint16 sequence) {
    const qint32 length = headerSize + body.size() + checksumSize;
    QByteArray frame;
    frame.reserve(length);
    appendBigEndian(frame, length);
    appendBigEndian(frame, version);
    appendBigEndian(frame, protocolType);
    appendBigEndian(frame, sequence);
    appendBigEndian(frame, requestAttribute);
    frame.append(body);
    appendChecksum(frame);
    return frame;
}

constexpr int sequenceOffset = 6; // behind length, version and protocol type
constexpr int attributeOffset = 8;

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
    return framed(readBody(item, station), sequence);
}

QByteArray writeFrame(const SBusRequestItem& item, int station, quint16 sequence) {
    if (carriesSequence(item.command))
        return framed(writeBody(item, station), sequence);
    QByteArray frame = item.data;
    appendChecksum(frame);
    return frame;
}

bool carriesSequence(quint32 command) {
    return classOf(command) != CommandClass::WriteClock;
}

qint32 announcedLength(const QByteArray& bytes) {
    return numberAt<qint32>(bytes, 0);
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

QByteArray withoutHeader(const QByteArray& telegram) {
    return telegram.mid(headerSize);
}

} // namespace sbus::ethernet
