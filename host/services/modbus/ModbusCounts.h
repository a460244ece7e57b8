#pragma once

#include <atomic>
#include <cstdint>

namespace host {

// What a Modbus server has seen. Any thread.
struct ModbusCounts {
    std::atomic<std::uint64_t> clients{0}; // connected now
    std::atomic<std::uint64_t> requests{0};
    std::atomic<std::uint64_t> writes{0};     // of the requests
    std::atomic<std::uint64_t> exceptions{0}; // of the answers
    std::atomic<std::uint64_t> notGood{0};    // of the exceptions: reads of values that were not good
    std::atomic<std::uint64_t> rejected{0};   // connections of clients that are not allowed
    std::atomic<std::uint64_t> replaced{0};   // connections that were quiet and made room for others
    std::atomic<std::uint64_t> rubbish{0};    // connections that ended for bytes that are no Modbus
};

} // namespace host
