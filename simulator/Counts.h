#pragma once

#include "Media.h"

#include <array>
#include <chrono>
#include <deque>
#include <map>

// What the controllers of a line have seen and done. Plain values: a copy stays as it was taken.
namespace sim {

using Clock = std::chrono::steady_clock;

struct WriteRecord {
    Clock::time_point time;
    int station; // 255: a broadcast, recorded once
    Media media;
    unsigned address;
    std::uint32_t value;
};

struct ClockRecord {
    Clock::time_point time;
    int station;
    std::array<std::uint8_t, 8> bytes; // week, weekday, year, month, day, hour, minute, second, in BCD
};

struct StationCounts {
    std::map<unsigned, std::uint64_t> telegrams; // by command code, broadcasts not among them
    std::uint64_t answers = 0;                   // good ones, whether or not they reached the line
    std::uint64_t refusals = 0;                  // of these:
    std::uint64_t rangeErrors = 0;               //   an element that is not there, a clock that cannot be
    std::uint64_t unknownCommands = 0;
    std::uint64_t malformed = 0;  //   bytes that do not fit the command
    std::uint64_t unanswered = 0; // while silenced
};

struct FaultCounts {
    std::uint64_t drop = 0;
    std::uint64_t late = 0;
    std::uint64_t duplicate = 0;
    std::uint64_t crc = 0;
    std::uint64_t nak = 0;
    std::uint64_t shortened = 0;
};

struct LineCounts {
    std::uint64_t bytesReceived = 0;
    std::uint64_t bytesSent = 0;      // handed to the system, also what finds no room or no peer there
    std::uint64_t bytesDiscarded = 0; // serial: belonged to no good telegram
    std::uint64_t telegrams = 0;      // whole and with a right checksum
    std::uint64_t wrongChecksums = 0;
    std::uint64_t malformed = 0; // Ethernet: no request telegram. Serial: broke off.
    std::uint64_t broadcasts = 0;
    std::uint64_t foreignStations = 0; // for a station that is not here
    std::map<int, StationCounts> stations;
    FaultCounts faults;

    std::deque<WriteRecord> writes; // the last ones, in order, one an element
    std::uint64_t writesInAll = 0;
    std::deque<ClockRecord> clockSettings; // the last ones, in order
};

} // namespace sim
