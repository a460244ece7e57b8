#pragma once

#include "EndPoint.h"
#include "LineEnd.h"
#include "Pacer.h"
#include "Pty.h"

#include <asio/steady_timer.hpp>

namespace sim {

// A pseudo-terminal as a serial line. With pacing, bytes take the time that they would take on the line.
class SerialEnd final : public LineEnd {
public:
    SerialEnd(asio::io_context& context, Line& servedLine, EndPoint endPoint, bool pace);

    std::string open() override;
    void close() override;
    std::string device() const override { return pty.device(); }

private:
    void receive(const std::uint8_t* bytes, std::size_t size);
    void awaitSilence();
    void answer(const std::vector<Bytes>& telegrams);
    void send();

    Line& line;
    const EndPoint where;
    const std::chrono::nanoseconds characterTime; // 0 without pacing
    Pty pty;
    SerialReceiver receiver;
    Pacer pacer;
    asio::steady_timer silenceTimer;
    asio::steady_timer sendTimer;
};

} // namespace sim
