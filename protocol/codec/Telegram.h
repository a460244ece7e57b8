#pragma once

#include "SBusRequestItem.h"

#include <QByteArray>

// What both framings share: the checksum and the telegram bodies. Multi-byte numbers are big-endian.
namespace sbus {

constexpr int checksumSize = 2;

// CRC-16 with polynomial 0x1021, start value 0, most significant bit first: two bytes, high byte first.
QByteArray crc16(const QByteArray& bytes);
// Appends the checksum of all that `frame` holds.
void appendChecksum(QByteArray& frame);
// Whether the last two bytes are the checksum of all before them. False below two bytes.
bool hasValidChecksum(const QByteArray& telegram);

// station, command, count, address
void appendReadBody(QByteArray& frame, const SBusRequestItem& item, int station);
// station, command, then by class: byte count, address, element count, data (bits); byte count, address,
// data (words); data (clock and codes without a layout)
void appendWriteBody(QByteArray& frame, const SBusRequestItem& item, int station);

// The bytes that the answer to a read holds without its framing; 0 for other commands.
int readPayloadSize(const SBusRequestItem& item);

} // namespace sbus
