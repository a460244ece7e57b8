#include "BenchChannel.h"
#include "SBusEthernetDriver.h"

#include <HalvexDriverComponent/CLogger.h>
#include <HalvexDriverComponent/Halvex.h>
#include <HalvexDriverLink/CLinkUdp.h>

#include <Simulator.h>

#include <asio.hpp>
#include <benchmark/benchmark.h>

#include <array>
#include <stdexcept>

// One poll telegram of 127 registers over the loopback: through the whole driver, from the request taken from
// the table to the values published, and, as the limit, the same bytes to and fro over a connected socket.
// The same simulated controller answers both, so its share is in both.

namespace {

constexpr std::size_t registers = 127; // the longest run that one telegram takes

// Takes what is published, like a host that looks at nothing.
class CountingCore final : public HalvexDriverCoreInterface {
public:
    void publishPoints(int, int, const QVector<PointUpdate>& updates) override {
        values += static_cast<std::size_t>(updates.size());
    }
    void publishRtuStatus(int, int, const RtuStatus&) override {}
    void publishChannelStatus(int, const ChannelStatus&) override {}

    std::size_t values = 0;
};

class Controller {
public:
    Controller() : simulator({{sim::udpLine(1, {BenchChannel::station})}}) {
        const std::string fault = simulator.start();
        if (!fault.empty())
            throw std::runtime_error(fault);
    }

    std::uint16_t port() const { return simulator.port(1); }

private:
    sim::Simulator simulator;
};

void pollsThroughTheDriver(benchmark::State& state) {
    const Controller controller;
    CountingCore core;
    BenchChannel channel(&core);
    channel.SetLinks(std::make_unique<CLinkUdp>(UdpSettings{"127.0.0.1", controller.port()}));
    channel.addRegisters(static_cast<unsigned>(registers));
    SBusEthernetDriver protocol(&channel);
    channel.rtu().attachProtocol(&protocol, nullptr);
    channel.rtu().InitRtu();
    if (channel.GetLink()->open() != 0)
        state.SkipWithError("the link does not open");
    channel.SetConnect(true);
    protocol.setLink(channel.GetLink());
    while (state.KeepRunning()) {
        channel.rtu().RequestPoll(static_cast<int>(Halvex::PollKind::Analog), nullptr);
        protocol.processNextRequest();
    }
    if (core.values != static_cast<std::size_t>(state.iterations()) * registers)
        state.SkipWithError("not every poll brought all of its values");
    state.SetItemsProcessed(static_cast<std::int64_t>(core.values));
}

void driverUnwatched(benchmark::State& state) {
    pollsThroughTheDriver(state);
}
BENCHMARK(driverUnwatched)->Name("EthernetPoll/driver")->UseRealTime()->Unit(benchmark::kMicrosecond);

void driverWatched(benchmark::State& state) {
    const auto frames = CLogger::GetInstance()->watchLinesAndFrames(
        [](const LogLine& line) { benchmark::DoNotOptimize(line.text.size()); });
    pollsThroughTheDriver(state);
}
BENCHMARK(driverWatched)
    ->Name("EthernetPoll/driver_with_frame_trace")
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

void bareSocket(benchmark::State& state) {
    const Controller controller;
    SBusRequestItem item;
    item.command = 6; // read registers
    item.count = static_cast<quint32>(registers) - 1;
    BenchChannel channel;
    SBusEthernetDriver protocol(&channel);
    QByteArray request;
    protocol.buildReadFrame(request, item, BenchChannel::station);

    asio::io_context context;
    asio::ip::udp::socket socket(context, asio::ip::udp::v4());
    socket.connect({asio::ip::address_v4::loopback(), controller.port()});
    std::array<char, 1024> answer{};
    std::size_t received = 0;
    while (state.KeepRunning()) {
        socket.send(asio::buffer(request.constData(), static_cast<std::size_t>(request.size())));
        received += socket.receive(asio::buffer(answer)) > registers * 4 ? 1 : 0;
    }
    if (received != static_cast<std::size_t>(state.iterations()))
        state.SkipWithError("not every request was answered with all of its values");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(registers));
}
BENCHMARK(bareSocket)->Name("EthernetPoll/bare_socket")->UseRealTime()->Unit(benchmark::kMicrosecond);

} // namespace
