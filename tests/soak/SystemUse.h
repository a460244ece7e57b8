#pragma once

#include <cstddef>

// What the process has of the system at a moment. POSIX only.
struct SystemUse {
    int descriptors = 0;
    int threads = 0;
    std::size_t allocated = 0; // bytes; 0 under a sanitizer, whose own allocator counts nothing
    std::size_t resident = 0;  // bytes

    static SystemUse now();
};

// Expects as many descriptors and threads as before, as soon as threads on their way out have ended, and no
// more than `growth` bytes allocated.
void expectNoMoreThan(const SystemUse& before, std::size_t growth = 256 * 1024);
