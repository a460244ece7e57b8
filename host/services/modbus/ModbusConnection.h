#pragma once

#include "ModbusFrame.h"

#include <asio/ip/tcp.hpp>

#include <array>
#include <chrono>
#include <functional>
#include <memory>

namespace host {

// One client's connection. Its requests are answered one after the other, in their order; while one is
// carried out, or its answer has not been taken, nothing more is read, so that a client who sends without end
// or reads nothing waits for itself alone. Lives on the server's thread, in a shared_ptr.
// States: made, open (after begin), ended (after end, for good).
class ModbusConnection : public std::enable_shared_from_this<ModbusConnection> {
public:
    using Clock = std::chrono::steady_clock;
    using Answered = std::function<void(const ModbusPdu&)>;

    class Owner {
    public:
        Owner() = default;
        Owner(const Owner&) = delete;
        Owner& operator=(const Owner&) = delete;
        virtual ~Owner() = default;

        // Calls `answered` once, unless the server ends before.
        virtual void carryOut(const ModbusFrame& request, const Answered& answered) = 0;
        // By the other side, or for bytes that are no Modbus. The last call.
        virtual void connectionEnded(ModbusConnection& connection, bool forRubbish) = 0;
    };

    ModbusConnection(asio::ip::tcp::socket clientSocket, Owner& connectionOwner);

    void begin();
    void end();

    // Waits for the client, and since when.
    bool isQuiet() const { return !isBusy; }
    Clock::time_point quietSince() const { return lastHeard; }

private:
    void readMore();
    void handleNext();
    void carryOut(ModbusFrame& request);
    void send(const ModbusFrame& answer);
    void giveUp(bool forRubbish);

    asio::ip::tcp::socket socket;
    Owner& owner;
    bool isBusy = false;
    bool isEnded = false;
    Clock::time_point lastHeard = Clock::now();
    std::array<std::uint8_t, 1'024> received{}; // room for a few frames, which is what one read may bring
    std::size_t used = 0;                       // bytes of frames that were handled, at its beginning
    std::size_t filled = 0;                     // bytes in all
    std::vector<std::uint8_t> sent;             // the answer on its way
};

} // namespace host
