#include "Telegram.h"

#include "BigEndian.h"
#include "CommandCode.h"

namespace sbus {
namespace {

// The eight shift steps of each of two bytes, made at once: what is shifted out at the top comes back at the
// bits 12, 5 and 0 of the polynomial, and so reaches the top again 4, 11 and 16 steps later.
quint32 afterTwoBytes(quint32 crc) {
    const quint32 fedBack = crc ^ (crc >> 4) ^ (crc >> 8) ^ (crc >> 11) ^ (crc >> 12);
    return ((fedBack << 12) ^ (fedBack << 5) ^ fedBack) & 0xFFFF;
}

// The same for eight bytes and the fourth power of the polynomial, whose bits stand four times as far apart.
// What is left after a division by the power leaves the same remainder as the whole. One after the other, the
// steps of a long answer take 8 us, a third of its way over the loopback; so they take 0.2.
quint64 afterEightBytes(quint64 rest) {
    const quint64 fedBack = rest ^ (rest >> 16) ^ (rest >> 32) ^ (rest >> 44) ^ (rest >> 48);
    return (fedBack << 48) ^ (fedBack << 20) ^ fedBack;
}

quint16 remainderOf(quint64 dividend) {
    quint32 crc = 0;
    for (int shift = 48; shift >= 0; shift -= 16)
        crc = afterTwoBytes(crc ^ static_cast<quint16>(dividend >> shift));
    return static_cast<quint16>(crc);
}

// The bytes that fill no eight go first: zeros in front of them would change nothing.
quint16 checksumOf(const char* bytes, int length) {
    constexpr int step = sizeof(quint64);
    const int odd = length % step;
    quint64 rest = 0;
    for (int i = 0; i < odd; ++i)
        rest = (rest << 8) | static_cast<quint8>(bytes[i]);
    for (int i = odd; i < length; i += step)
        rest = afterEightBytes(rest) ^ qFromBigEndian<quint64>(bytes + i);
    return remainderOf(rest);
}

// High byte first.
quint16 checksumAt(const char* bytes) {
    return qFromBigEndian<quint16>(bytes);
}

// Station and command begin every body.
QByteArray beginBody(const SBusRequestItem& item, int station, int size) {
    QByteArray body;
    body.reserve(size);
    appendBigEndian(body, static_cast<quint8>(station));
    appendBigEndian(body, static_cast<quint8>(item.command));
    return body;
}

} // namespace

QByteArray crc16(const QByteArray& bytes) {
    QByteArray result;
    appendBigEndian(result, checksumOf(bytes.constData(), bytes.size()));
    return result;
}

void appendChecksum(QByteArray& frame) {
    appendBigEndian(frame, checksumOf(frame.constData(), frame.size()));
}

bool hasValidChecksum(const QByteArray& telegram) {
    const int covered = telegram.size() - checksumSize;
    return covered >= 0 &&
           checksumOf(telegram.constData(), covered) == checksumAt(telegram.constData() + covered);
}

QByteArray readBody(const SBusRequestItem& item, int station) {
    constexpr int size = 5;
    QByteArray body = beginBody(item, station, size);
    appendBigEndian(body, static_cast<quint8>(item.count));
    appendBigEndian(body, static_cast<quint16>(item.address));
    return body;
}

// The byte count is the number of bytes that follow it up to the checksum, minus one.
QByteArray writeBody(const SBusRequestItem& item, int station) {
    constexpr int countedBesideBitData = 2;  // address and element count, minus one
    constexpr int countedBesideWordData = 1; // address, minus one
    constexpr int sizeBesideData = 6;
    QByteArray body = beginBody(item, station, sizeBesideData + item.data.size());
    switch (classOf(item.command)) {
    case CommandClass::WriteBits:
        appendBigEndian(body, static_cast<quint8>(item.data.size() + countedBesideBitData));
        appendBigEndian(body, static_cast<qint16>(item.address));
        appendBigEndian(body, static_cast<quint8>(item.count));
        break;
    case CommandClass::WriteWords:
        appendBigEndian(body, static_cast<quint8>(item.data.size() + countedBesideWordData));
        appendBigEndian(body, static_cast<qint16>(item.address));
        break;
    case CommandClass::None:
    case CommandClass::ReadBits:
    case CommandClass::ReadWords:
    case CommandClass::WriteClock:
        break;
    }
    body.append(item.data);
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
