#include "SerialRelay.h"

#include "DeliveryQueue.h"

#include <Pty.h>

#include <asio/buffer.hpp>
#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/post.hpp>

#include <algorithm>
#include <array>
#include <future>
#include <thread>

#include <fcntl.h>

namespace soak {

namespace {

class RelayedLine {
public:
    RelayedLine(asio::io_context& context, const std::string& device)
        : host(context), controllers(context, open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)),
          waiting(context, [this](const Passage& passage) { send(passage); }) {
        controllers.non_blocking(true);
        host.open({}, [this](const std::uint8_t* bytes, std::size_t size) {
            take(Direction::ToController,
                 QByteArray(reinterpret_cast<const char*>(bytes), static_cast<int>(size)));
        });
        readNext();
    }

    std::string device() const { return host.device(); }
    void setTrouble(std::unique_ptr<LineTrouble> newTrouble) { trouble = std::move(newTrouble); }
    bool isEmpty() const { return waiting.isEmpty(); }

private:
    void readNext() {
        controllers.async_read_some(
            asio::buffer(buffer), [this](const std::error_code& error, std::size_t size) {
                if (error)
                    return;
                take(Direction::ToHost, QByteArray(buffer.data(), static_cast<int>(size)));
                readNext();
            });
    }

    void take(Direction direction, const QByteArray& bytes) {
        const Clock::time_point now = Clock::now();
        if (!trouble)
            waiting.add(now, Passage{direction, {bytes, now}});
        else
            for (Passage& passage : trouble->pass(direction, bytes, now)) {
                const Clock::time_point time = passage.delivery.time;
                waiting.add(time, std::move(passage));
            }
        waiting.sendDue();
    }

    void send(const Passage& passage) {
        const QByteArray& bytes = passage.delivery.bytes;
        const auto size = static_cast<std::size_t>(bytes.size());
        std::error_code ignored; // what nobody reads is lost, as on a line
        if (passage.direction == Direction::ToHost)
            host.write(reinterpret_cast<const std::uint8_t*>(bytes.constData()), size);
        else
            controllers.write_some(asio::buffer(bytes.constData(), size), ignored);
    }

    sim::Pty host;
    asio::posix::stream_descriptor controllers;
    std::array<char, 4096> buffer{};
    std::unique_ptr<LineTrouble> trouble;
    DeliveryQueue<Passage> waiting;
};

} // namespace

struct SerialRelay::Running {
    // On the relay's thread; waits for it.
    template <typename Function>
    auto call(Function function) {
        std::packaged_task<decltype(function())()> task(function);
        auto result = task.get_future();
        asio::post(context, [&task] { task(); });
        return result.get();
    }

    asio::io_context context;
    asio::executor_work_guard<asio::io_context::executor_type> work{context.get_executor()};
    std::vector<std::unique_ptr<RelayedLine>> lines; // the relay's thread alone
    std::thread thread{[this] { context.run(); }};
};

SerialRelay::SerialRelay() : running(std::make_unique<Running>()) {}

SerialRelay::~SerialRelay() {
    running->context.stop();
    running->thread.join();
    running->lines.clear();
}

std::string SerialRelay::addLine(const std::string& device) {
    return running->call([&] {
        running->lines.push_back(std::make_unique<RelayedLine>(running->context, device));
        return running->lines.back()->device();
    });
}

void SerialRelay::trouble(int line, std::unique_ptr<LineTrouble> newTrouble) {
    running->call([&] { running->lines[static_cast<std::size_t>(line)]->setTrouble(std::move(newTrouble)); });
}

void SerialRelay::heal() {
    running->call([&] {
        for (const auto& line : running->lines)
            line->setTrouble(nullptr);
    });
    const auto isEmpty = [&] {
        return std::all_of(running->lines.begin(), running->lines.end(),
                           [](const auto& line) { return line->isEmpty(); });
    };
    while (!running->call(isEmpty))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

} // namespace soak
