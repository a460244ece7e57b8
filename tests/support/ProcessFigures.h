#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

// What the process uses of the system. POSIX only.

int openDescriptors();
int runningThreads();
// The same of another process, by its number.
int openDescriptors(long process);
int runningThreads(long process);
// Raises the limit on open descriptors. Whether the system allows as many.
bool allowDescriptors(std::size_t count);

// Keeps free descriptors taken while it lives: the lowest `count` ones, or all that the limit allows.
class TakenDescriptors {
public:
    explicit TakenDescriptors(int count);
    TakenDescriptors(const TakenDescriptors&) = delete;
    TakenDescriptors& operator=(const TakenDescriptors&) = delete;
    ~TakenDescriptors();

    int highest() const { return descriptors.back(); }

private:
    std::vector<int> descriptors;
};

// The processor time that the calling thread has used.
std::chrono::nanoseconds threadProcessorTime();
// The processor time of all threads of the process, in the program and in the system for it.
std::chrono::nanoseconds processProcessorTime();
// The bytes allocated and not freed; 0 under a sanitizer with an allocator of its own.
std::size_t allocatedBytes();
