#pragma once

#include "site/ElementAddress.h"

#include <vector>

// How values for registers, timers and counters are given to the driver so that each lands at its own
// element.
//
// The driver's list command takes up to 31 consecutive elements into one telegram; beyond, it may carry a
// later value to the wrong element, and it writes a float register as eight bytes where the controller takes
// four. So a list is one run of at most 31 integers, or of fewer where the controller takes fewer, and a
// float goes by itself.
namespace host {

struct WordWrite {
    unsigned point = 0;
    ElementAddress address;
    bool isFloat = false;
    double value = 0;
};

// One command of the driver's: a list when it holds several writes, a single set point otherwise.
using WordCommand = std::vector<WordWrite>;

constexpr unsigned longestWriteList = 31;

// All of `writes`, by media and element; of two writes to one element the later one is carried out later.
std::vector<WordCommand> planWordWrites(const std::vector<WordWrite>& writes,
                                        unsigned longestList = longestWriteList);

} // namespace host
