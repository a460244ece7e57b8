#pragma once

#include <array>
#include <cstdint>

// From where a program calls the system: a call together with the calls that have led to it, as far as they
// lie in the program's own files, which are those in the folder of the program. It has a number that is the
// same in each run. For the library of FaultsPosix.cpp, whose own functions are left out. Any thread; takes
// no memory.
struct Frame {
    const char* file = "";
    std::uintptr_t offset = 0; // from where the file is loaded
    bool isOwn = false;
};

struct Place {
    static constexpr int most = 8; // calls, the innermost ones

    std::uint64_t number = 0;
    std::array<Frame, most> frames;
    int count = 0;
};

// Before all others.
void preparePlaces();

// For a function that the caller's caller stands in the place of.
Place currentPlace(const char* kind);
