#pragma once

#include "SBusRequestItem.h"

#include <QByteArray>

// The serial framing: in Data Mode a telegram starts with a synchronisation byte and an attribute; in
// Break Mode the line's break marks its start. Nothing is escaped: the byte 0xB5 goes out as it is
// wherever it occurs.
namespace sbus::serial {

enum class Mode {
    Data,
    Break,
    Other, // laid out as in Break Mode, but without a break, and no write is answered
};

// By the number in the RTU's record: 0 Data Mode, 1 Break Mode.
Mode modeOf(int number);

QByteArray readFrame(const SBusRequestItem& item, int station, Mode mode);
QByteArray writeFrame(const SBusRequestItem& item, int station, Mode mode);

// The size of the whole answer; 0 for a write that is not answered.
int readAnswerSize(int payloadSize, Mode mode);
int writeAnswerSize(Mode mode);

enum class ReadAnswer {
    Good,
    NotAcknowledged, // refused with an acknowledge telegram
    FrameError,      // a wrong start
    ChecksumError,
};

enum class WriteAnswer {
    Good,
    FrameError, // a wrong start
    ChecksumError,
    ControlError, // Break Mode: the single byte is no acknowledge
};

ReadAnswer checkReadAnswer(const QByteArray& answer, Mode mode);
// A negative acknowledge with a correct checksum is Good: the acknowledge bytes are not looked at.
WriteAnswer checkWriteAnswer(const QByteArray& answer, Mode mode);

// The answer to a read without what stands before its payload; the checksum stays at the end.
QByteArray withoutStart(const QByteArray& answer, Mode mode);

} // namespace sbus::serial
