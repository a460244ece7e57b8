#pragma once

#include "Abilities.h"
#include "Counts.h"
#include "Faults.h"
#include "Outcome.h"
#include "SerialReceiver.h"

#include <memory>

namespace sim {

// One telegram to send, `delay` from now on.
struct Answer {
    Bytes bytes;
    std::chrono::milliseconds delay{0};
};

// The controllers of one line: a telegram in, answers out. No I/O; the time comes from outside.
// Owns its controllers and its counts. Any operation from any thread.
class Line {
public:
    Line(int lineId, Framing framing, const std::vector<int>& stations, const MemorySizes& sizes,
         std::uint64_t faultSeed, std::size_t recordLimit);

    Framing framing() const { return lineFraming; }
    std::vector<int> stations() const;

    // `telegram`: one whole request with its framing. No answer: nothing is to be sent. More than one: each
    // with its own delay.
    std::vector<Answer> respond(const Bytes& telegram, Clock::time_point now);

    // Null for a station that is not here.
    Memory* memory(int station);
    // A silenced controller neither obeys nor answers. False for a station that is not here.
    bool silence(int station, bool silent);
    // From now on. False for a station that is not here.
    bool limit(int station, const Abilities& abilities);
    // Starts the mishaps afresh from the seed.
    void setFaults(const Faults& newFaults);

    LineCounts counts() const;
    void countReceived(std::size_t bytes);
    void countSent(std::size_t bytes);
    void countLosses(const SerialLosses& losses);

private:
    struct Controller {
        explicit Controller(const MemorySizes& sizes) : memory(sizes) {}
        Memory memory;
        Abilities abilities;
        bool silent = false;
    };

    void broadcast(const Request& request, Clock::time_point now);
    static Outcome obeyedBy(Controller& controller, const Request& request);
    Outcome answerOf(Controller& controller, const Request& request, Clock::time_point now);
    void record(const Request& request, Clock::time_point now);
    Bytes wrapOutcome(const Outcome& outcome, std::uint16_t sequence) const;
    std::vector<Answer> disturb(Bytes answer, const Mishap& mishap);

    const int id;
    const Framing lineFraming;
    const std::uint64_t seed;
    const std::size_t recordsKept;                          // of each kind
    std::map<int, std::unique_ptr<Controller>> controllers; // fixed after construction

    mutable std::mutex mutex; // guards what follows, and the controllers but for their memories
    Faults faults;
    MishapGenerator mishaps;
    LineCounts tally;
};

} // namespace sim
