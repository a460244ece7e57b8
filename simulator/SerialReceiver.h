#pragma once

#include "Counts.h"
#include "Telegram.h"

namespace sim {

// What came in and was no telegram.
struct SerialLosses {
    std::uint64_t bytes = 0;
    std::uint64_t wrongChecksums = 0; // one for each damaged telegram
    std::uint64_t brokenOff = 0;      // telegrams of which the rest never came
};

// Cuts the bytes of a serial line into request telegrams. A pseudo-terminal carries no break, so in both
// modes a telegram ends where its command says, and what is left incomplete ends with silence.
//
// After a wrong checksum the search goes on one byte further, so that a stray byte costs no telegram behind
// it. The length of an unknown command is not known: such a telegram ends where its checksum comes out right
// on the last byte received.
// One thread; the time comes from outside.
class SerialReceiver {
public:
    // Silence after which no more of a telegram is expected. The driver sends a telegram in one piece; this
    // leaves room for a loaded machine.
    static constexpr std::chrono::milliseconds silenceLimit{50};

    explicit SerialReceiver(Framing lineFraming) : framing(lineFraming) {}

    // Whole telegrams with a right checksum, in order.
    std::vector<Bytes> push(const std::uint8_t* bytes, std::size_t size, Clock::time_point now);
    // To be called silenceLimit after the last push() while incomplete(): gives up what has been waited for.
    std::vector<Bytes> expire(Clock::time_point now);
    bool incomplete() const { return !buffer.empty(); }

    // Since the last call.
    SerialLosses takeLosses();

private:
    void search(bool silent, std::vector<Bytes>& found);
    bool dropToStart(bool silent);
    bool isWhole(std::size_t& size) const;
    void discard(std::size_t count);

    Framing framing;
    Bytes buffer;
    Clock::time_point lastArrival{};
    bool damaged = false; // what lies in the buffer belongs to a telegram already counted as damaged
    SerialLosses losses;
};

} // namespace sim
