#include "EthernetTelegram.h"

#include "CommandCode.h"
#include "Telegram.h"

#include <QDataStream>

namespace sbus::ethernet {
namespace {

constexpr quint8 version = 1;
constexpr quint8 protocolType = 0;
constexpr quint8 requestAttribute = 0;
constexpr quint8 responseAttribute = 1;
constexpr quint8 acknowledgeAttribute = 2;

QByteArray framed(const QByteArray& body, quint16 sequence) {
    QByteArray frame;
    QDataStream stream(&frame, QIODevice::WriteOnly);
    stream << static_cast<qint32>(headerSize + body.size() + checksumSize) << version << protocolType
           << sequence << requestAttribute;
    stream.writeRawData(body.constData(), body.size());
    appendChecksum(frame);
    return frame;
}

struct Header {
    qint32 length = 0;
    quint8 version = 0;
    quint8 protocolType = 0;
    quint16 sequence = 0;
    quint8 attribute = 0;
};

Header headerOf(const QByteArray& telegram) {
    Header header;
    QDataStream stream(telegram);
    stream >> header.length >> header.version >> header.protocolType >> header.sequence >> header.attribute;
    return header;
}

// The code stands in the two bytes before the checksum. An acknowledge too short to hold one is answered
// with the highest code: never with the 0 that stands for success.
quint16 acknowledgeCodeOf(const QByteArray& telegram) {
    constexpr int codeSize = 2;
    const int offset = telegram.size() - checksumSize - codeSize;
    if (offset < headerSize)
        return 0xFFFF;
    quint16 code = 0;
    QDataStream(telegram.mid(offset, codeSize)) >> code;
    return code;
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
    return headerOf(bytes).length;
}

AnswerCheck checkReadAnswer(const QByteArray& telegram, quint16 expectedSequence) {
    using Result = AnswerCheck::Result;
    const Header header = headerOf(telegram);
    if (header.sequence != expectedSequence)
        return {Result::InvalidSequence};
    if (header.attribute == responseAttribute)
        return checkChecksum(telegram);
    const unsigned code = header.attribute == acknowledgeAttribute ? acknowledgeCodeOf(telegram) : 0U;
    return {Result::AcknowledgeError, code != 0 ? code : header.attribute};
}

AnswerCheck checkWriteAnswer(const QByteArray& telegram, quint16 expectedSequence) {
    using Result = AnswerCheck::Result;
    const Header header = headerOf(telegram);
    if (header.sequence != expectedSequence)
        return {Result::InvalidSequence};
    if (header.attribute != acknowledgeAttribute)
        return {Result::AcknowledgeError, header.attribute};
    if (const quint16 code = acknowledgeCodeOf(telegram))
        return {Result::AcknowledgeError, code};
    return checkChecksum(telegram);
}

QByteArray withoutHeader(const QByteArray& telegram) {
    return telegram.mid(headerSize);
}

} // namespace sbus::ethernet
