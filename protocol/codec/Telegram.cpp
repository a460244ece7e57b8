#include "Telegram.h"

#include "CommandCode.h"

#include <QDataStream>
#include <QtEndian>

namespace sbus {
namespace {

// The eight shift steps of a byte are made at once: what is shifted out at the top comes back at the bits 12,
// 5 and 0 of the polynomial, so it reaches the top again four steps later at the earliest. One after the
// other the steps of a long answer take 8 us, a fifth of its way over the loopback.
quint16 checksumOf(const char* bytes, int length) {
    quint32 crc = 0;
    for (int i = 0; i < length; ++i) {
        quint32 fedBack = ((crc >> 8) ^ static_cast<quint8>(bytes[i])) & 0xFF;
        fedBack ^= fedBack >> 4;
        crc = (crc << 8) ^ (fedBack << 12) ^ (fedBack << 5) ^ fedBack;
    }
    return static_cast<quint16>(crc);
}

// High byte first.
quint16 checksumAt(const char* bytes) {
    return qFromBigEndian<quint16>(bytes);
}

void writeRaw(QDataStream& stream, const QByteArray& data) {
    stream.writeRawData(data.constData(), data.size());
}

} // namespace

QByteArray crc16(const QByteArray& bytes) {
    const quint16 crc = checksumOf(bytes.constData(), bytes.size());
    QByteArray result(checksumSize, '\0');
    result[0] = static_cast<char>(crc >> 8);
    result[1] = static_cast<char>(crc & 0xFF);
    return result;
}

void appendChecksum(QByteArray& frame) {
    frame.append(crc16(frame));
}

bool hasValidChecksum(const QByteArray& telegram) {
    const int covered = telegram.size() - checksumSize;
    return covered >= 0 &&
           checksumOf(telegram.constData(), covered) == checksumAt(telegram.constData() + covered);
}

QByteArray readBody(const SBusRequestItem& item, int station) {
    QByteArray body;
    QDataStream stream(&body, QIODevice::WriteOnly);
    stream << static_cast<quint8>(station) << static_cast<quint8>(item.command)
           << static_cast<quint8>(item.count) << static_cast<quint16>(item.address);
    return body;
}

// The byte count is the number of bytes that follow it up to the checksum, minus one.
QByteArray writeBody(const SBusRequestItem& item, int station) {
    constexpr int countedBesideBitData = 2;  // address and element count, minus one
    constexpr int countedBesideWordData = 1; // address, minus one
    QByteArray body;
    QDataStream stream(&body, QIODevice::WriteOnly);
    stream << static_cast<quint8>(station) << static_cast<quint8>(item.command);
    switch (classOf(item.command)) {
    case CommandClass::WriteBits:
        stream << static_cast<quint8>(item.data.size() + countedBesideBitData)
               << static_cast<qint16>(item.address) << static_cast<quint8>(item.count);
        break;
    case CommandClass::WriteWords:
        stream << static_cast<quint8>(item.data.size() + countedBesideWordData)
               << static_cast<qint16>(item.address);
        break;
    case CommandClass::None:
    case CommandClass::ReadBits:
    case CommandClass::ReadWords:
    case CommandClass::WriteClock:
        break;
    }
    writeRaw(stream, item.data);
    return body;
}

int readPayloadSize(const SBusRequestItem& item) {
    constexpr int wordSize = 4;
    constexpr int bitsInByte = 8;
    const int elements = static_cast<int>(item.count) + 1; // a read's count fits its byte on the wire
    switch (classOf(item.command)) {
    case CommandClass::ReadWords:
        return elements * wordSize;
    case CommandClass::ReadBits:
        return (elements + bitsInByte - 1) / bitsInByte;
    case CommandClass::None:
    case CommandClass::WriteBits:
    case CommandClass::WriteWords:
    case CommandClass::WriteClock:
        break;
    }
    return 0;
}

} // namespace sbus
