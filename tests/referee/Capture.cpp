#include "Capture.h"

#include <QDataStream>

namespace {

constexpr quint16 controllerPort = 5050;
constexpr quint16 hostPort = 49152;
constexpr quint32 controllerAddress = 0x0A000002; // 10.0.0.2
constexpr quint32 hostAddress = 0x0A000001;       // 10.0.0.1
constexpr int udpHeaderSize = 8;
constexpr int ipHeaderSize = 20;

void writeFileHeader(QDataStream& file) {
    constexpr quint32 magic = 0xA1B2C3D4; // tells the byte order of all that follows
    constexpr quint16 major = 2;
    constexpr quint16 minor = 4;
    constexpr quint32 timeZone = 0;
    constexpr quint32 timeAccuracy = 0;
    constexpr quint32 longestPacket = 65535;
    constexpr quint32 rawIp = 101;
    file << magic << major << minor << timeZone << timeAccuracy << longestPacket << rawIp;
}

// Without a checksum, as one that was left to the network card.
void writeIpHeader(QDataStream& file, bool toController, int payloadSize) {
    constexpr quint8 version4WithFiveWords = 0x45;
    constexpr quint8 service = 0;
    constexpr quint16 identification = 0;
    constexpr quint16 fragment = 0;
    constexpr quint8 timeToLive = 64;
    constexpr quint8 udp = 17;
    constexpr quint16 noChecksum = 0;
    file << version4WithFiveWords << service << static_cast<quint16>(ipHeaderSize + payloadSize)
         << identification << fragment << timeToLive << udp << noChecksum
         << (toController ? hostAddress : controllerAddress)
         << (toController ? controllerAddress : hostAddress);
}

void writeUdpHeader(QDataStream& file, bool toController, int payloadSize) {
    constexpr quint16 noChecksum = 0;
    file << (toController ? hostPort : controllerPort) << (toController ? controllerPort : hostPort)
         << static_cast<quint16>(udpHeaderSize + payloadSize) << noChecksum;
}

} // namespace

QByteArray Capture::pcapFile() const {
    QByteArray bytes;
    QDataStream file(&bytes, QIODevice::WriteOnly);
    writeFileHeader(file);
    quint32 second = 0; // a datagram each second
    for (const Datagram& datagram : caught) {
        constexpr quint32 microsecond = 0;
        const bool toController = datagram.direction == Direction::ToController;
        const int size = datagram.bytes.size();
        const auto packetSize = static_cast<quint32>(ipHeaderSize + udpHeaderSize + size);
        file << second++ << microsecond << packetSize << packetSize;
        writeIpHeader(file, toController, udpHeaderSize + size);
        writeUdpHeader(file, toController, size);
        file.writeRawData(datagram.bytes.constData(), size);
    }
    return bytes;
}
