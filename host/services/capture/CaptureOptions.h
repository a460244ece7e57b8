#pragma once

#include <cstdint>
#include <string>

namespace host {

// Where a capture goes and how much of it is kept.
struct CaptureOptions {
    std::string path;                    // of the file that grows, in UTF-8
    std::uint64_t fileSize = 10'000'000; // bytes; the file makes room for a new one before it gets larger
    unsigned files = 5;                  // how many there are at most, the growing one among them
};

} // namespace host
