#pragma once

#include "Impairment.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace soak {

enum class Direction { ToController, ToHost };

struct RelayCounts {
    std::uint64_t toController = 0; // telegrams that came in for the controllers
    std::uint64_t toHost = 0;
    std::uint64_t impaired = 0; // of both
};

// Passes datagrams on between hosts and simulated controllers on 127.0.0.1, and maltreats them on the way.
// One host per line: the controllers' answers go to the port that the host has sent from last, as those of a
// controller behind a router do.
//
// States: passes everything on untouched (as made, and healed) and impaired. A thread of its own; operations
// on any other.
class UdpRelay {
public:
    // Told on the relay's thread of every telegram that comes in, before anything befalls it.
    using Watch =
        std::function<void(int line, Direction direction, const QByteArray& telegram, Clock::time_point)>;

    explicit UdpRelay(std::uint64_t seedOfAll = 1, Watch telegramWatch = {});
    UdpRelay(const UdpRelay&) = delete;
    UdpRelay& operator=(const UdpRelay&) = delete;
    ~UdpRelay();

    // A line, counted from 0, to the controllers at `controllerPort`. The port where the host finds them.
    std::uint16_t addLine(std::uint16_t controllerPort);

    void impair(const Rates& both) { impair(both, both); }
    void impair(const Rates& toController, const Rates& toHost);
    // Returns when what was held back has left as well.
    void heal();

    RelayCounts counts() const;

private:
    struct Running;
    std::unique_ptr<Running> running;
};

} // namespace soak
