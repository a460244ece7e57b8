#include <HalvexDriverLink/CLinkUdp.h>

#include "LinkEnd.h"
#include "NameLookup.h"
#include "TimeOut.h"

#include <asio/basic_datagram_socket.hpp>
#include <asio/buffer.hpp>
#include <asio/ip/udp.hpp>

#include <algorithm>
#include <array>
#include <utility>

using asio::ip::udp;
// Asio's own kind of socket takes any executor, which costs a virtual call or two; here it is always a
// context.
using UdpSocket = asio::basic_datagram_socket<udp, asio::io_context::executor_type>;

namespace {

// A pending report about an earlier datagram fails one send; there can be a few of them.
constexpr int sendAttempts = 4;
// Holds any datagram, so that what is thrown away is counted to the byte.
constexpr std::size_t largestDatagram = 65536;
// More datagrams than the system keeps for a reader; the bound is for a peer that never stops talking.
constexpr int mostUnread = 20000;

// What a router or the peer's own system reports (ICMP): the controller is not there at the moment. Nothing
// is wrong with this end.
bool isAbsence(const asio::error_code& error) {
    static const std::array<asio::error_code, 6> reports{
        asio::error::connection_refused, // no such port
        asio::error::connection_reset,   // the same on Windows
        asio::error::host_unreachable,   asio::error::network_unreachable,
        asio::error::network_reset,      // too many hops, on Windows
        asio::error::no_protocol_option, // no UDP there
    };
    return std::find(reports.begin(), reports.end(), error) != reports.end();
}

} // namespace

struct CLinkUdp::Socket : LinkEnd<UdpSocket> {
    using LinkEnd::LinkEnd;

    Outcome receive(UdpSocket& end, asio::mutable_buffer buffer, Clock::time_point deadline) {
        const auto start = [&](auto handler) { end.async_receive(buffer, std::move(handler)); };
        return perform(start, deadline);
    }

    // At once, as a rule; a wait is for a system that has no room for the datagram.
    Outcome send(UdpSocket& end, asio::const_buffer buffer, Clock::time_point deadline) {
        Outcome outcome;
        outcome.count = end.send(buffer, 0, outcome.error);
        if (outcome.error != asio::error::would_block)
            return outcome;
        const auto start = [&](auto handler) { end.async_send(buffer, std::move(handler)); };
        return perform(start, deadline);
    }

    // Reads away what is there, and tells each piece of it.
    template <typename Tell>
    void discard(UdpSocket& end, const Tell& tell) {
        for (int i = 0; i < mostUnread; ++i) {
            asio::error_code error;
            const std::size_t count = end.receive(asio::buffer(scrap), 0, error);
            if (error && !isAbsence(error))
                break;
            tell(scrap.data(), static_cast<int>(error ? 0 : count));
        }
    }

    NameLookup names;
    std::array<char, largestDatagram> scrap;
};

CLinkUdp::CLinkUdp(UdpSettings peer)
    : settings(std::move(peer)), socket(std::make_unique<Socket>([this] { return isInterrupted(); })) {}

CLinkUdp::~CLinkUdp() = default;

void CLinkUdp::reset() {
    close();
    clearInterrupt();
}

int CLinkUdp::open() {
    const int result = socket->open([this](UdpSocket& end) {
        asio::error_code error;
        const auto mayWait = [this] { return socket->loop().mayWait(); };
        const udp::endpoint peer = socket->names.find(settings.host, settings.port, mayWait, error);
        if (!error)
            end.open(peer.protocol(), error);
        // Connected, so that the system itself drops every other sender's datagrams.
        if (!error)
            end.connect(peer, error);
        // What can be done at once needs no turn of the loop that waits.
        if (!error)
            end.non_blocking(true, error);
        return error;
    });
    return noteOpened(result);
}

void CLinkUdp::close() {
    socket->close();
}

int CLinkUdp::send(const char* data, int length, int timeoutMs) {
    const int result = socket->use([&](UdpSocket& end) -> asio::error_code {
        socket->discard(end, [this](const char* bytes, int count) { noteDiscarded(bytes, count); });
        if (length <= 0)
            return {};
        const asio::const_buffer telegram(data, static_cast<std::size_t>(length));
        Clock::time_point begun = Clock::now();
        const Clock::time_point deadline = begun + std::chrono::milliseconds(std::max(timeoutMs, 0));
        WaitLoop::Outcome outcome = socket->send(end, telegram, deadline);
        for (int i = 1; i < sendAttempts && isAbsence(outcome.error); ++i) {
            begun = Clock::now();
            outcome = socket->send(end, telegram, deadline);
        }
        // A controller that is reported absent each time shows as silence, like any absent one.
        if (outcome.error && !isAbsence(outcome.error))
            return outcome.error;
        noteSent(data, length, begun);
        return {};
    });
    return noteSendEnded(result, data, length);
}

int CLinkUdp::receive(char* buffer, int capacity, int& received, int timeoutMs) {
    received = 0;
    return noteReceiveEnded(socket->use([&](UdpSocket& end) -> asio::error_code {
        if (capacity <= 0)
            return {};
        const asio::mutable_buffer area(buffer, static_cast<std::size_t>(capacity));
        const Clock::time_point deadline = Clock::now() + longerThan(timeoutMs);
        // A report of absence and an empty datagram are nothing: the wait goes on.
        do {
            if (isInterrupted())
                return {};
            const WaitLoop::Outcome outcome = socket->receive(end, area, deadline);
            if (outcome.isUnfinished())
                return {};
            if (outcome.error && !isAbsence(outcome.error))
                return outcome.error;
            received = static_cast<int>(outcome.count);
        } while (received == 0 && Clock::now() < deadline);
        noteReceived(buffer, received);
        return {};
    }));
}

void CLinkUdp::wake() {
    socket->loop().wake();
}
