#pragma once

#include "Capture.h"

#include <QString>
#include <QStringList>

// What tshark's S-Bus dissector, which was not written here, makes of each datagram: the sequence number and
// the telegram in words. A row of bytes stands for the data that it found.
//
//     "7 station 5: Read register(s) (0x06), 2 from 10"
//     "7 response: 00 00 00 07 FF FF FF FE"
//     "8 station 5: Write flag(s) (0x0b), 1 from 256: 01"
//     "8 acknowledge: ACK (Acknowledged) (0x0000)"
//     "no S-Bus telegram, 10 bytes"
//
// What it finds amiss follows in brackets: its own remarks, a checksum that is not correct, a length that is
// not the datagram's, an answer that it does not take for the answer to the telegram before.
// Without tshark: std::runtime_error.
QStringList dissect(const Capture& capture);
// The same of a capture file (pcap) that holds UDP with the controller on port 5050.
QStringList dissectFile(const QString& captureFile);

// What tshark prints of a capture file. It runs without the settings of whoever is logged in, which may say
// how dissectors work.
QByteArray runTshark(const QString& captureFile, const QStringList& arguments);

// What it says of the two acknowledges that a simulated controller gives.
inline const QString acknowledged = QStringLiteral("acknowledge: ACK (Acknowledged) (0x0000)");
inline const QString refused =
    QStringLiteral("acknowledge: NAK, no reason specified (0x0001) [Telegram not acknowledged by PCD]");
