#pragma once

#include <QByteArray>
#include <QList>

// The datagrams of one conversation with a controller, in the order in which they went. One thread at a time.
class Capture {
public:
    enum class Direction { ToController, FromController };
    struct Datagram {
        Direction direction;
        QByteArray bytes;
    };

    void add(Direction direction, const QByteArray& bytes) { caught.append({direction, bytes}); }
    const QList<Datagram>& datagrams() const { return caught; }

    // As a capture file (pcap) of UDP over IPv4, with the controller on the port that S-Bus has by custom.
    QByteArray pcapFile() const;

private:
    QList<Datagram> caught;
};
