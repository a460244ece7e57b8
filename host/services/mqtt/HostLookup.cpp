#include "HostLookup.h"

#include "runtime/StartThread.h"

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>

#include <atomic>

namespace host {

struct HostLookup::Answer {
    std::string fault;
    std::atomic<bool> isOver{false};
};

HostLookup::HostLookup(const std::string& host) : answer(std::make_shared<Answer>()) {
    asio::error_code error;
    asio::ip::make_address(host, error);
    if (!error) {
        answer->isOver = true;
        return;
    }
    startThread("the address of " + host, [shared = answer, host] {
        asio::io_context context;
        asio::error_code failure;
        asio::ip::tcp::resolver(context).resolve(host, "", failure);
        shared->fault = failure ? failure.message() : std::string();
        shared->isOver = true;
    }).detach();
}

bool HostLookup::isOver() const {
    return answer->isOver;
}

std::string HostLookup::fault() const {
    return answer->fault;
}

} // namespace host
