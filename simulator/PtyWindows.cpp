#include "Pty.h"

namespace sim {

struct Pty::Terminal {};

Pty::Pty(asio::io_context& ioContext) : context(ioContext) {}
Pty::~Pty() = default;

void Pty::removeStaleLink(const std::string&) {}

std::string Pty::open(const std::string&, Receive) {
    return "a serial line is played on a pseudo-terminal, which this system does not have; play UDP lines "
           "here";
}

void Pty::close() {}

void Pty::write(const std::uint8_t*, std::size_t) {}

std::string Pty::device() const {
    return {};
}

} // namespace sim
