#pragma once

#include "SBusRequestItem.h"

#include <QByteArray>

// The Ethernet framing: length, version, protocol type, sequence number and attribute before the body, the
// checksum behind it.
namespace sbus::ethernet {

constexpr int headerSize = 9;
constexpr int lengthSize = 4;

QByteArray readFrame(const SBusRequestItem& item, int station, quint16 sequence);
// The clock telegram goes out as its data and checksum alone, without header, station and command.
QByteArray writeFrame(const SBusRequestItem& item, int station, quint16 sequence);
// Whether a frame of this command carries a sequence number.
bool carriesSequence(quint32 command);

// The length that the first four bytes of a telegram, which must be there, give: it may be negative.
qint32 announcedLength(const char* telegram);

struct AnswerCheck {
    enum class Result {
        Good,
        InvalidSequence,
        AcknowledgeError, // `value` is the acknowledge code or the attribute that was not expected
        ChecksumError,
    };
    Result result;
    unsigned value = 0;
};

// Any bytes may be checked; what a short telegram lacks of its header reads as 0.
AnswerCheck checkReadAnswer(const QByteArray& telegram, quint16 expectedSequence);
AnswerCheck checkWriteAnswer(const QByteArray& telegram, quint16 expectedSequence);

// Payload and checksum.
QByteArray withoutHeader(QByteArray telegram);

} // namespace sbus::ethernet
