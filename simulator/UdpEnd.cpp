#include "UdpEnd.h"

#include <SystemText.h>

#include <asio/buffer.hpp>
#include <asio/error.hpp>
#include <asio/steady_timer.hpp>

namespace sim {

namespace {

constexpr std::size_t largestDatagram = 65535;

} // namespace

UdpEnd::UdpEnd(asio::io_context& ioContext, Line& servedLine, EndPoint endPoint)
    : context(ioContext), line(servedLine), where(std::move(endPoint)), socket(ioContext),
      buffer(largestDatagram) {}

std::string UdpEnd::open() {
    close();
    std::error_code error;
    asio::ip::udp::resolver resolver(context);
    const auto found = resolver.resolve(where.host, std::to_string(where.port), error);
    const std::string name = where.host + ":" + std::to_string(where.port);
    if (error || found.empty())
        return "cannot find the host of " + name + ": " + text::systemText(error);
    const Peer local = found.begin()->endpoint();
    socket.open(local.protocol(), error);
    if (!error)
        socket.bind(local, error);
    if (!error)
        where.port = socket.local_endpoint(error).port();
    if (error) {
        close();
        // Asio's own category does not know the portable conditions.
        if (std::error_code(error.value(), std::system_category()) == std::errc::address_not_available)
            return "cannot bind " + name + ": " + where.host + " is no address of this machine";
        return "cannot bind " + name + ": " + text::systemText(error);
    }
    receiveNext();
    return {};
}

void UdpEnd::close() {
    ++life;
    std::error_code ignored;
    socket.close(ignored);
}

void UdpEnd::receiveNext() {
    socket.async_receive_from(asio::buffer(buffer), sender,
                              [this, begun = life](const std::error_code& error, std::size_t size) {
                                  if (begun != life)
                                      return;
                                  // An error here is a peer that is gone; others may still ask.
                                  if (!error)
                                      answer(size);
                                  receiveNext();
                              });
}

void UdpEnd::answer(std::size_t size) {
    line.countReceived(size);
    const Bytes telegram(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(size));
    for (Answer& next : line.respond(telegram, Clock::now())) {
        if (next.delay.count() > 0)
            sendLater(std::move(next), sender);
        else
            send(next.bytes, sender);
    }
}

void UdpEnd::sendLater(Answer answer, const Peer& peer) {
    auto timer = std::make_shared<asio::steady_timer>(context, answer.delay);
    timer->async_wait(
        [this, timer, begun = life, peer, bytes = std::move(answer.bytes)](const std::error_code& error) {
            if (!error && begun == life)
                send(bytes, peer);
        });
}

void UdpEnd::send(const Bytes& bytes, const Peer& peer) {
    line.countSent(bytes.size()); // before the peer can see them
    std::error_code ignored;
    socket.send_to(asio::buffer(bytes), peer, 0, ignored);
}

} // namespace sim
