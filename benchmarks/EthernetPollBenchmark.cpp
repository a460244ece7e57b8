#include "Steps.h"

#include <asio.hpp>
#include <benchmark/benchmark.h>

#include <array>

// One poll telegram of 127 registers over the loopback: through the whole driver, from the request taken from
// the table to the values published, and, as the limit, the same bytes to and fro over a connected socket.
// The same simulated controller answers both, so its share is in both.

namespace {

void pollsThroughTheDriver(benchmark::State& state) {
    EthernetPoll poll;
    while (state.KeepRunning()) {
        poll.request();
        poll.process();
    }
    if (poll.values() != static_cast<std::size_t>(state.iterations()) * registersInTelegram)
        state.SkipWithError("not every poll brought all of its values");
    state.SetItemsProcessed(static_cast<std::int64_t>(poll.values()));
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
    const Controller controller(sim::udpLine(1, {BenchChannel::station}));
    SBusRequestItem item;
    item.command = 6; // read registers
    item.count = registersInTelegram - 1;
    BenchChannel channel;
    SBusEthernetDriver protocol(&channel);
    QByteArray request;
    protocol.buildReadFrame(request, item, BenchChannel::station);

    asio::io_context context;
    asio::ip::udp::socket socket(context, asio::ip::udp::v4());
    socket.connect({asio::ip::address_v4::loopback(), controller.port()});
    std::array<char, 1024> answer{};
    std::int64_t received = 0;
    while (state.KeepRunning()) {
        socket.send(asio::buffer(request.constData(), static_cast<std::size_t>(request.size())));
        received += socket.receive(asio::buffer(answer)) > std::size_t{registersInTelegram} * 4 ? 1 : 0;
    }
    if (received != state.iterations())
        state.SkipWithError("not every request was answered with all of its values");
    state.SetItemsProcessed(received * registersInTelegram);
}
BENCHMARK(bareSocket)->Name("EthernetPoll/bare_socket")->UseRealTime()->Unit(benchmark::kMicrosecond);

} // namespace
