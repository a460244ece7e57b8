#include "UdpController.h"

#include <QCoreApplication>

#include <asio/buffer.hpp>

#include <chrono>
#include <thread>

using asio::ip::udp;

UdpController::UdpController(std::uint16_t port)
    : socket(context, udp::endpoint(asio::ip::address_v4::loopback(), port)) {
    socket.non_blocking(true);
}

std::uint16_t UdpController::port() const {
    return socket.local_endpoint().port();
}

QByteArray UdpController::receive() {
    QByteArray datagram(65536, '\0');
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (std::chrono::steady_clock::now() < end) {
        asio::error_code error;
        const auto size = socket.receive_from(
            asio::buffer(datagram.data(), static_cast<std::size_t>(datagram.size())), sender, 0, error);
        if (!error)
            return datagram.left(static_cast<int>(size));
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return {};
}

void UdpController::answer(const QByteArray& datagram) {
    send(datagram, sender.port());
}

void UdpController::send(const QByteArray& datagram, std::uint16_t toPort) {
    const udp::endpoint to(asio::ip::address_v4::loopback(), toPort);
    socket.send_to(asio::buffer(datagram.constData(), static_cast<std::size_t>(datagram.size())), to);
}

std::uint16_t unusedUdpPort() {
    constexpr std::uint16_t lowest = 20'000;
    constexpr std::uint16_t count = 12'000;
    static auto next = static_cast<std::uint16_t>(QCoreApplication::applicationPid() * 97 % count);
    asio::io_context context;
    for (;;) {
        next = static_cast<std::uint16_t>((next + 1) % count);
        const auto port = static_cast<std::uint16_t>(lowest + next);
        udp::socket socket(context, udp::v4());
        asio::error_code error;
        socket.bind({asio::ip::address_v4::loopback(), port}, error);
        if (!error)
            return port;
    }
}
