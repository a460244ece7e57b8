#include "Client.h"

#include "Bench.h"

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>
#include <asio/read.hpp>
#include <asio/serial_port.hpp>
#include <asio/write.hpp>

using namespace sim;

struct UdpClient::Socket {
    asio::io_context context;
    asio::ip::udp::socket socket{context};
};

UdpClient::UdpClient(std::uint16_t port) : socket(std::make_unique<Socket>()) {
    socket->socket.connect({asio::ip::address_v4::loopback(), port});
}

UdpClient::~UdpClient() = default;

void UdpClient::send(const std::string& request) {
    std::error_code ignored; // an unbound port is told to a later send
    socket->socket.send(asio::buffer(hex(request)), 0, ignored);
}

std::string UdpClient::receive(std::chrono::milliseconds time) {
    Bytes buffer(2048);
    std::size_t received = 0;
    socket->socket.async_receive(asio::buffer(buffer),
                                 [&](const std::error_code&, std::size_t size) { received = size; });
    socket->context.restart();
    socket->context.run_for(time);
    socket->socket.cancel();
    socket->context.restart();
    socket->context.run();
    buffer.resize(received);
    return toHex(buffer);
}

std::string UdpClient::ask(const std::string& request) {
    send(request);
    return receive();
}

struct SerialClient::Port {
    asio::io_context context;
    asio::serial_port port{context};
    std::error_code lastError;
};

SerialClient::SerialClient(const std::string& device) : port(std::make_unique<Port>()) {
    port->port.open(device, port->lastError);
}

SerialClient::~SerialClient() = default;

bool SerialClient::isOpen() const {
    return port->port.is_open();
}

bool SerialClient::send(const std::string& request) {
    std::error_code error;
    asio::write(port->port, asio::buffer(hex(request)), error);
    return !error;
}

std::string SerialClient::receive(std::size_t size, std::chrono::milliseconds time) {
    Bytes buffer(size);
    std::size_t received = 0;
    bool done = false;
    asio::async_read(port->port, asio::buffer(buffer), [&](const std::error_code& error, std::size_t count) {
        port->lastError = error;
        received = count;
        done = true;
    });
    port->context.restart();
    port->context.run_for(time);
    if (!done) {
        port->port.cancel();
        port->context.restart();
        port->context.run();
        port->lastError = {};
    }
    buffer.resize(received);
    return toHex(buffer);
}

std::string SerialClient::ask(const std::string& request, std::size_t answerSize) {
    send(request);
    return receive(answerSize);
}

bool SerialClient::sawHangUp(std::chrono::milliseconds time) {
    receive(1, time);
    return static_cast<bool>(port->lastError);
}
