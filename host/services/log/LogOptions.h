#pragma once

#include <cstdint>
#include <string>

namespace host {

struct LogOptions {
    std::string directory;
    std::uint64_t fileBytes = 5'000'000; // a new file begins at this size
    unsigned files = 3;                  // of each kind, the newest included
    bool withFrames = false;
};

} // namespace host
