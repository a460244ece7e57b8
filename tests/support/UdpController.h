#pragma once

#include <QByteArray>

#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>

#include <cstdint>

// The controller's end of a UDP link on 127.0.0.1, or any other sender there. One thread.
class UdpController {
public:
    // Port 0: a free one.
    explicit UdpController(std::uint16_t port = 0);

    std::uint16_t port() const;
    // The next datagram; empty when none came within 5 s. Its sender is who answer() goes to.
    QByteArray receive();
    void answer(const QByteArray& datagram);
    void send(const QByteArray& datagram, std::uint16_t toPort);
    std::uint16_t senderPort() const { return sender.port(); }

private:
    asio::io_context context;
    asio::ip::udp::socket socket;
    asio::ip::udp::endpoint sender;
};

// A port of 127.0.0.1 that nobody listens on, another one at each call, from below those that the system
// gives to sockets by itself: no link that is opened must get it while its controllers are away.
std::uint16_t unusedUdpPort();
