#pragma once

#include "Counts.h"
#include "Telegram.h"

#include <optional>

namespace sim {

// Decides when the bytes of answers leave. With a character time the line is busy for as long as the bytes on
// it take, requests included, and an answer leaves in small pieces; with none each answer leaves whole.
// The count runs from an answer's start, so it does not drift. One thread; the time comes from outside.
class Pacer {
public:
    // Between two pieces, unless one character takes longer. The other side takes a silence of 20 ms for the
    // end of an answer.
    static constexpr std::chrono::milliseconds pieceTime{4};

    // 0: no pacing.
    explicit Pacer(std::chrono::nanoseconds timePerCharacter) : characterTime(timePerCharacter) {}

    // The line carried a request that was read at `now`: it is over when its own time has passed.
    void noteRequest(std::size_t size, Clock::time_point now);
    // To leave at `earliest`, or as soon after it as the line is free.
    void add(Bytes answer, Clock::time_point earliest);
    // The bytes that have left by `now`, each handed out once.
    Bytes takeDue(Clock::time_point now);
    // When to call takeDue() next; none when nothing waits.
    std::optional<Clock::time_point> nextDue(Clock::time_point now) const;
    // When the line has carried all requests so far.
    Clock::time_point freeFrom() const { return lineFree; }

private:
    struct Sending {
        Bytes bytes;
        Clock::time_point start;
        std::size_t left = 0; // bytes that have left
    };

    bool startNext(Clock::time_point now);
    Clock::duration timeOf(std::size_t characters) const;

    std::chrono::nanoseconds characterTime;
    Clock::time_point lineFree{};
    std::multimap<Clock::time_point, Bytes> waiting; // by earliest start
    std::optional<Sending> sending;
};

} // namespace sim
