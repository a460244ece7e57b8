#pragma once

#include "EndPoint.h"
#include "LineEnd.h"

#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>

namespace sim {

// A UDP port, one telegram a datagram. Answers go to whoever asked.
class UdpEnd final : public LineEnd {
public:
    UdpEnd(asio::io_context& ioContext, Line& servedLine, EndPoint endPoint);

    std::string open() override;
    void close() override;
    std::uint16_t port() const override { return where.port; }

private:
    using Peer = asio::ip::udp::endpoint;

    void receiveNext();
    void answer(std::size_t size);
    void sendLater(Answer answer, const Peer& peer);
    void send(const Bytes& bytes, const Peer& peer);

    asio::io_context& context;
    Line& line;
    EndPoint where; // its port becomes the real one
    asio::ip::udp::socket socket;
    unsigned life = 0; // counts the closings; an answer that waits from an earlier life is not sent
    Peer sender;
    Bytes buffer;
};

} // namespace sim
