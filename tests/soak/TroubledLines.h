#pragma once

#include "ManyLines.h"
#include "SerialRelay.h"
#include "SystemUse.h"
#include "ValueJudge.h"

#include <atomic>
#include <functional>

// Serial lines with a relay between host and controllers, polled and commanded without a pause, and judged:
// no value is published that the controller never had, and once the trouble is over fresh ones come within
// three cycles, every command has its result, and the process uses no more of the system than before.
//
// Each of the telegrams that a line carries is answered with a size of its own: 24 flags, 7 registers, 1
// register. An answer that comes after its time-out can pass for the next one's, since a serial telegram does
// not say which request it belongs to; the sizes keep such an answer from another request's points. And no
// byte in them is 0: the checksum starts with 0, so in Break Mode, where nothing marks an answer's start,
// bytes of 0 can be lost in front of it or come in behind it unseen.
class TroubledLines {
public:
    using MakeTrouble = std::function<std::unique_ptr<soak::LineTrouble>(sim::Framing, int line)>;

    // Data Mode and Break Mode in turns.
    explicit TroubledLines(int lines);

    // Polls until so many requests have ended on all lines together while in trouble, heals, and judges.
    void endureAndJudge(const MakeTrouble& makeTrouble, std::uint64_t polls);

private:
    static constexpr unsigned codedRegisters = 7;
    static constexpr unsigned commandedRegister = 50; // stands alone: a telegram of its own
    static constexpr unsigned flags = 24;

    void prepare(int line);
    void start();
    void renewValues();
    void giveCommands();
    std::uint64_t pollsEnded();
    void expectFreshValues();

    ManyLines plant;
    soak::SerialRelay relay;
    ValueJudge judge;
    unsigned generation = 0;
    std::vector<std::atomic<unsigned>> results; // of each line
    std::vector<unsigned> given;
};
