#pragma once

#include <Simulator.h>

#include <stdexcept>

// One line of simulated controllers, up while it lives.
class Controller {
public:
    explicit Controller(const sim::LineSite& line, const sim::Options& options = {})
        : simulator({{line}}, options), lineId(line.id) {
        const std::string fault = simulator.start();
        if (!fault.empty())
            throw std::runtime_error(fault);
    }

    std::uint16_t port() const { return simulator.port(lineId); }
    std::string device() const { return simulator.device(lineId); }
    sim::LineCounts counts() const { return simulator.counts(lineId); }

private:
    sim::Simulator simulator;
    const int lineId;
};
