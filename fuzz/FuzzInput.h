#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>

// What the fuzzer hands over, taken from the front. What is missing reads as 0.
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : next(data), left(size) {}

    std::uint8_t byte() {
        if (left == 0)
            return 0;
        --left;
        return *next++;
    }
    std::uint16_t word() {
        const unsigned high = byte();
        return static_cast<std::uint16_t>(high << 8 | byte());
    }
    bool isEmpty() const { return left == 0; }

    const std::uint8_t* rest() const { return next; }
    std::size_t restSize() const { return left; }

private:
    const std::uint8_t* next;
    std::size_t left;
};

// Ends the run with the input as a finding.
inline void require(bool isTrue, const char* what) {
    if (isTrue)
        return;
    std::cerr << "not so: " << what << '\n';
    std::abort();
}
