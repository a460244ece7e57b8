#pragma once

#include "Line.h"

#include <string>

// "B5 00 01" to its three bytes, and back with upper-case digits and one blank between bytes.
sim::Bytes hex(const std::string& text);
std::string toHex(const sim::Bytes& bytes);

// A line's controllers without a line: request bytes in, answer bytes out. Time stands still but for pass().
class Bench {
public:
    explicit Bench(sim::Framing framing, const std::vector<int>& stations = {5}, std::uint64_t seed = 1,
                   std::size_t records = 1000);

    // The answers to all telegrams in `request`, one behind the other; empty without an answer.
    std::string ask(const std::string& request);
    // The same, each answer by itself and with its delay.
    std::vector<sim::Answer> askEach(const std::string& request);
    // Lets time pass on a silent line; what is answered only now.
    std::string pass(std::chrono::milliseconds time);

    sim::Memory& memory(int station = 5) { return *line.memory(station); }
    sim::LineCounts counts() const { return line.counts(); }

    sim::Line line;

private:
    std::vector<sim::Answer> respond(const std::vector<sim::Bytes>& telegrams);

    sim::SerialReceiver receiver;
    sim::Clock::time_point now{};
};
