#pragma once

#include "SBusRequestItem.h"

#include <QByteArray>

// The serial framing: in Data Mode a telegram starts with a synchronisation byte and an attribute; in
// Break Mode the line's break marks its start. Nothing is escaped: the byte 0xB5 goes out as it is
// wherever it occurs.
namespace sbus::serial {

constexpr int dataMode = 0;
constexpr int breakMode = 1;

QByteArray readFrame(const SBusRequestItem& item, int station, int mode);
QByteArray writeFrame(const SBusRequestItem& item, int station, int mode);

// The size of the whole answer. In a mode other than the two no write is answered: 0.
int readAnswerSize(int payloadSize, int mode);
int writeAnswerSize(int mode);

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

ReadAnswer checkReadAnswer(const QByteArray& answer, int mode);
// A negative acknowledge with a correct checksum is Good: the acknowledge bytes are not looked at.
WriteAnswer checkWriteAnswer(const QByteArray& answer, int mode);

// The answer to a read without what stands before its payload; the checksum stays at the end.
QByteArray withoutStart(const QByteArray& answer, int mode);

} // namespace sbus::serial
