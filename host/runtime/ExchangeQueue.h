#pragma once

#include "telegram/Exchange.h"

#include <cstdint>
#include <mutex>
#include <vector>

namespace host {

// Exchanges on their way from the lines' threads to one reader. Bounded: what comes while it is full is lost
// and counted. Any thread.
class ExchangeQueue {
public:
    // A line over the loopback makes some ten thousand a second, and the reader comes every 50 ms.
    static constexpr std::size_t mostWaiting = 8'192;

    void add(const Exchange& exchange);

    struct Taken {
        std::vector<Exchange> exchanges; // oldest first
        std::uint64_t lost = 0;          // newer than all of them
    };
    // What has come since the last call.
    Taken take();

private:
    std::mutex mutex; // guards what is waiting
    Taken waiting;
};

} // namespace host
