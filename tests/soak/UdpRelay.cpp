#include "UdpRelay.h"

#include "DeliveryQueue.h"

#include <asio/buffer.hpp>
#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>
#include <asio/post.hpp>

#include <array>
#include <future>
#include <thread>
#include <vector>

namespace soak {

using asio::ip::udp;

namespace {

constexpr std::size_t largestDatagram = 65536;

// One direction of a line: what comes in at one socket, the deliveries that wait for their time.
class Flow {
public:
    using Send = DeliveryQueue<QByteArray>::Send;

    Flow(asio::io_context& context, std::uint64_t seed, Send sendOn)
        : impairment(Rates{}, seed), waiting(context, std::move(sendOn)) {}

    void take(const QByteArray& telegram, Clock::time_point now) {
        ++telegrams;
        for (Delivery& delivery : impairment.pass(telegram, now))
            waiting.add(delivery.time, std::move(delivery.bytes));
        waiting.sendDue();
    }

    bool isEmpty() const { return waiting.isEmpty(); }

    Impairment impairment;
    std::uint64_t telegrams = 0;

private:
    DeliveryQueue<QByteArray> waiting;
};

udp::endpoint local(std::uint16_t port) {
    return {asio::ip::address_v4::loopback(), port};
}

class RelayedLine {
public:
    using Told = std::function<void(Direction, const QByteArray&, Clock::time_point)>;

    RelayedLine(asio::io_context& context, std::uint16_t controllerPort, std::uint64_t seed, Told watch)
        : hostSide(context, local(0)), controllerSide(context, local(0)), tell(std::move(watch)),
          toController(context, seed,
                       [this](const QByteArray& bytes) { sendOn(controllerSide, controller, bytes); }),
          toHost(context, seed + 1, [this](const QByteArray& bytes) { sendOn(hostSide, host, bytes); }),
          controller(local(controllerPort)) {
        receive(hostSide, hostBuffer, host, Direction::ToController);
        receive(controllerSide, controllerBuffer, answering, Direction::ToHost);
    }

    std::uint16_t port() const { return hostSide.local_endpoint().port(); }
    Flow& flow(Direction direction) { return direction == Direction::ToController ? toController : toHost; }

private:
    using Buffer = std::array<char, largestDatagram>;

    void receive(udp::socket& socket, Buffer& buffer, udp::endpoint& sender, Direction direction) {
        socket.async_receive_from(asio::buffer(buffer), sender,
                                  [&, direction](const std::error_code& error, std::size_t size) {
                                      if (error == asio::error::operation_aborted)
                                          return;
                                      // Any other error reports a peer that is not there at the moment.
                                      if (!error)
                                          pass(QByteArray(buffer.data(), static_cast<int>(size)), direction);
                                      receive(socket, buffer, sender, direction);
                                  });
    }

    void pass(const QByteArray& telegram, Direction direction) {
        const Clock::time_point now = Clock::now();
        tell(direction, telegram, now);
        flow(direction).take(telegram, now);
    }

    static void sendOn(udp::socket& socket, const udp::endpoint& to, const QByteArray& bytes) {
        std::error_code ignored; // the peer is gone: the telegram is lost
        socket.send_to(asio::buffer(bytes.constData(), static_cast<std::size_t>(bytes.size())), to, 0,
                       ignored);
    }

    udp::socket hostSide;
    udp::socket controllerSide;
    const Told tell;
    Flow toController;
    Flow toHost;
    const udp::endpoint controller;
    udp::endpoint host; // sent last
    udp::endpoint answering;
    Buffer hostBuffer;
    Buffer controllerBuffer;
};

} // namespace

struct UdpRelay::Running {
    Running(std::uint64_t seedOfAll, Watch telegramWatch)
        : seed(seedOfAll), watch(std::move(telegramWatch)) {}

    // On the relay's thread; waits for it.
    template <typename Function>
    auto call(Function function) {
        std::packaged_task<decltype(function())()> task(function);
        auto result = task.get_future();
        asio::post(context, [&task] { task(); });
        return result.get();
    }

    const std::uint64_t seed;
    const Watch watch;
    asio::io_context context;
    asio::executor_work_guard<asio::io_context::executor_type> work{context.get_executor()};
    std::vector<std::unique_ptr<RelayedLine>> lines; // the relay's thread alone
    std::thread thread{[this] { context.run(); }};
};

UdpRelay::UdpRelay(std::uint64_t seedOfAll, Watch telegramWatch)
    : running(std::make_unique<Running>(seedOfAll, std::move(telegramWatch))) {}

UdpRelay::~UdpRelay() {
    running->context.stop();
    running->thread.join();
    running->lines.clear();
}

std::uint16_t UdpRelay::addLine(std::uint16_t controllerPort) {
    return running->call([&] {
        const int line = static_cast<int>(running->lines.size());
        const auto tell = [this, line](Direction direction, const QByteArray& telegram,
                                       Clock::time_point now) {
            if (running->watch)
                running->watch(line, direction, telegram, now);
        };
        // Two seeds for each line, one for each direction.
        running->lines.push_back(std::make_unique<RelayedLine>(
            running->context, controllerPort, running->seed + 2 * static_cast<std::uint64_t>(line), tell));
        return running->lines.back()->port();
    });
}

void UdpRelay::impair(const Rates& toController, const Rates& toHost) {
    running->call([&] {
        for (const auto& line : running->lines) {
            line->flow(Direction::ToController).impairment.impair(toController);
            line->flow(Direction::ToHost).impairment.impair(toHost);
        }
    });
}

void UdpRelay::heal() {
    impair(Rates{});
    const auto isEmpty = [&] {
        for (const auto& line : running->lines)
            if (!line->flow(Direction::ToController).isEmpty() || !line->flow(Direction::ToHost).isEmpty())
                return false;
        return true;
    };
    while (!running->call(isEmpty))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

RelayCounts UdpRelay::counts() const {
    return running->call([&] {
        RelayCounts sum;
        for (const auto& line : running->lines) {
            Flow& out = line->flow(Direction::ToController);
            Flow& back = line->flow(Direction::ToHost);
            sum.toController += out.telegrams;
            sum.toHost += back.telegrams;
            sum.impaired += out.impairment.impaired() + back.impairment.impaired();
        }
        return sum;
    });
}

} // namespace soak
