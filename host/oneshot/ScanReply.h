#pragma once

#include "plan/OneShotSite.h"

#include <optional>
#include <vector>

namespace host {

// What one station has made of the question of a scan.
struct ScanReply {
    enum class Kind {
        Silent,
        Answers,
        Refuses, // the register that it was asked for; so it is there
        Unclear, // something came that is no answer
        Once,    // answered, but not when it was asked again
    };

    unsigned station = 0;
    Kind kind = Kind::Silent;
    std::chrono::microseconds roundTrip{0}; // of what came
    int value = 0;                          // of the register, of one that answers
    std::string fault; // "acknowledge code 1", of a refusal; what came, when that is unclear
};

// The replies of the stations on one line, talked to in one way.
struct LineScan {
    ControllerLine line; // its station does not count
    std::vector<ScanReply> replies;
    std::string lineFault; // which line failed and why, when it did
    bool isInterrupted = false;
};

// Whether a controller is there.
bool isPresent(const ScanReply& reply);

// Joins what a station replied with what it replied when it was asked once more. On a serial line an answer
// says nothing of who it is from: a late one may come in the place of another station's.
ScanReply joined(const ScanReply& first, const ScanReply& again);

} // namespace host
