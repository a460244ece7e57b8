#pragma once

#include "Hex.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

// Telegrams as a controller would write them, worked out apart from the plug-in's own code, so that a
// mistake there is not met by the same mistake here.

// CRC-16 with polynomial 0x1021 and start value 0, one shift step after the other.
inline quint16 referenceChecksum(const QByteArray& bytes) {
    unsigned crc = 0;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned>(static_cast<quint8>(byte)) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000u) != 0 ? (crc << 1) ^ 0x1021u : crc << 1;
    }
    return static_cast<quint16>(crc & 0xFFFFu);
}

inline QByteArray bigEndian16(unsigned value) {
    return QByteArray().append(static_cast<char>(value >> 8 & 0xFF)).append(static_cast<char>(value & 0xFF));
}

inline QByteArray bigEndian32(quint32 value) {
    return bigEndian16(value >> 16) + bigEndian16(value & 0xFFFF);
}

inline QByteArray withChecksum(const QByteArray& bytes) {
    return bytes + bigEndian16(referenceChecksum(bytes));
}

// With one bit of the checksum turned over.
inline QByteArray withWrongChecksum(const QByteArray& bytes) {
    return bytes + bigEndian16(referenceChecksum(bytes) ^ 0x0001u);
}

// The Ethernet telegram without its checksum, giving `announced` as its length.
inline QByteArray ethernetBytes(quint16 sequence, quint8 attribute, const QByteArray& body,
                                qint32 announced) {
    return bigEndian32(static_cast<quint32>(announced)) + hex("01 00") + bigEndian16(sequence) +
           QByteArray(1, static_cast<char>(attribute)) + body;
}

inline QByteArray ethernetTelegram(quint16 sequence, quint8 attribute, const QByteArray& body) {
    return withChecksum(ethernetBytes(sequence, attribute, body, 9 + body.size() + 2));
}

// What sets a clock to `time`. A byte in packed BCD reads in hex as its value does in decimal.
inline QByteArray referenceClockBytes(const QDateTime& time) {
    const QDate date = time.date();
    QString text;
    for (const int value : {date.weekNumber(), date.dayOfWeek(), date.year() % 100, date.month(), date.day(),
                            time.time().hour(), time.time().minute(), time.time().second()})
        text += QStringLiteral("%1 ").arg(value, 2, 10, QLatin1Char('0'));
    return QByteArray::fromHex(text.toLatin1());
}
