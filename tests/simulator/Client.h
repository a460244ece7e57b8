#pragma once

#include <chrono>
#include <memory>
#include <string>

// How long a test waits for what must come; only a failing test waits so long.
constexpr std::chrono::milliseconds patience{10000};
// How long a test waits to see that nothing comes.
constexpr std::chrono::milliseconds shortly{200};

// The asking side of a UDP port of this machine. Bytes are hex texts.
class UdpClient {
public:
    explicit UdpClient(std::uint16_t port);
    ~UdpClient();

    void send(const std::string& request);
    // One datagram; empty when none came in time.
    std::string receive(std::chrono::milliseconds time = patience);
    std::string ask(const std::string& request);

private:
    struct Socket;
    std::unique_ptr<Socket> socket;
};

// The asking side of a serial device.
class SerialClient {
public:
    explicit SerialClient(const std::string& device);
    ~SerialClient();

    bool isOpen() const;
    // False when the device is gone.
    bool send(const std::string& request);
    // `size` bytes, or what came in time.
    std::string receive(std::size_t size, std::chrono::milliseconds time = patience);
    std::string ask(const std::string& request, std::size_t answerSize);
    // Waits until the device has vanished.
    bool sawHangUp(std::chrono::milliseconds time = patience);

private:
    struct Port;
    std::unique_ptr<Port> port;
};
