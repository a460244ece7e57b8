#include "Telegram.h"

#include "BigEndian.h"
#include "Checksum.h"
#include "CommandCode.h"

#include <array>

namespace sbus {
namespace {

// High byte first.
quint16 checksumAt(const char* bytes) {
    return qFromBigEndian<quint16>(bytes);
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

void appendReadBody(QByteArray& frame, const SBusRequestItem& item, int station) {
    const std::array<char, 5> body{static_cast<char>(station), static_cast<char>(item.command),
                                   static_cast<char>(item.count), static_cast<char>(item.address >> 8),
                                   static_cast<char>(item.address)};
    frame.append(body.data(), static_cast<int>(body.size()));
}

// The byte count is the number of bytes that follow it up to the checksum, minus one.
void appendWriteBody(QByteArray& frame, const SBusRequestItem& item, int station) {
    constexpr int countedBesideBitData = 2;  // address and element count, minus one
    constexpr int countedBesideWordData = 1; // address, minus one
    appendBigEndian(frame, static_cast<quint8>(station));
    appendBigEndian(frame, static_cast<quint8>(item.command));
    switch (classOf(item.command)) {
    case CommandClass::WriteBits:
        appendBigEndian(frame, static_cast<quint8>(item.data.size() + countedBesideBitData));
        appendBigEndian(frame, static_cast<qint16>(item.address));
        appendBigEndian(frame, static_cast<quint8>(item.count));
        break;
    case CommandClass::WriteWords:
        appendBigEndian(frame, static_cast<quint8>(item.data.size() + countedBesideWordData));
        appendBigEndian(frame, static_cast<qint16>(item.address));
        break;
    case CommandClass::None:
    case CommandClass::ReadBits:
    case CommandClass::ReadWords:
    case CommandClass::WriteClock:
        break;
    }
    frame.append(item.data);
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
