#pragma once

#include <asio/error.hpp>
#include <asio/ip/udp.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

// Finds the address of a controller. The system offers no way to end the lookup of a name, which takes many
// seconds without a name server: each runs on a thread of its own, and a wait that is ended leaves it behind.
// The next find() of the same object goes on waiting for it, so that there is never more than one.
// Threads: one at a time.
class NameLookup {
public:
    // `host` is an address or a name. `mayWait` says whether to go on waiting for an answer. Throws
    // std::system_error when the system has no thread to give.
    asio::ip::udp::endpoint find(const std::string& host, std::uint16_t port,
                                 const std::function<bool()>& mayWait, asio::error_code& error);

private:
    struct Search;
    std::shared_ptr<Search> search; // shared with its thread
};
