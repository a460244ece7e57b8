#include "NameLookup.h"

#include <asio/io_context.hpp>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

using asio::ip::udp;

struct NameLookup::Search {
    std::mutex access;
    std::condition_variable changed;
    bool finished = false;
    asio::ip::address found; // unspecified when there is none
};

namespace {

// How long the end of a wait may go unnoticed.
constexpr std::chrono::milliseconds attention{20};

// The first IPv4 address of the host, or else its first address: controllers speak IPv4, and names like
// "localhost" often give the other kind first.
asio::ip::address look(const std::string& host) {
    asio::io_context context;
    udp::resolver resolver(context);
    asio::error_code error;
    const auto results = resolver.resolve(host, std::string(), udp::resolver::flags(), error);
    if (error || results.empty())
        return {};
    const auto isIpv4 = [](const auto& entry) { return entry.endpoint().address().is_v4(); };
    const auto ipv4 = std::find_if(results.begin(), results.end(), isIpv4);
    return (ipv4 != results.end() ? ipv4 : results.begin())->endpoint().address();
}

asio::ip::address lookWithoutThrowing(const std::string& host) noexcept {
    try {
        return look(host);
    } catch (...) { // out of memory
        return {};
    }
}

} // namespace

udp::endpoint NameLookup::find(const std::string& host, std::uint16_t port,
                               const std::function<bool()>& mayWait, asio::error_code& error) {
    const asio::ip::address literal = asio::ip::make_address(host, error);
    if (!error)
        return {literal, port};
    if (!search) {
        const auto started = std::make_shared<Search>();
        std::thread([started, host] {
            const asio::ip::address address = lookWithoutThrowing(host);
            const std::lock_guard lock(started->access);
            started->found = address;
            started->finished = true;
            started->changed.notify_all();
        }).detach();
        search = started;
    }
    const std::shared_ptr<Search> current = search;
    std::unique_lock lock(current->access);
    while (!current->finished && mayWait())
        current->changed.wait_for(lock, attention);
    error = asio::error::operation_aborted;
    if (!current->finished)
        return {};
    search.reset(); // asked anew next time: the answer may have changed
    error = asio::error_code();
    if (current->found.is_unspecified())
        error = asio::error::host_unreachable; // lookups have error numbers of their own, not the system's
    return {current->found, port};
}
