#include "Controller.h"
#include "CountingCore.h"
#include "LiveChannel.h"

#include <HalvexDriverLink/CLinkUdp.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <ctime>
#include <thread>
#include <vector>

// Many Ethernet channels at once, each a thread that turns every 10 ms: what they cost while nothing is
// asked, and how much they read together. One simulated controller with one thread answers all of them.

namespace {

constexpr int station = 1;
constexpr unsigned registersInTelegram = 127;

using Channels = std::vector<std::unique_ptr<LiveChannel>>;

Channels connectedChannels(std::int64_t count, CountingCore& core, std::uint16_t port, unsigned registers) {
    Channels channels;
    for (int id = 1; id <= count; ++id)
        channels.push_back(
            std::make_unique<LiveChannel>(core, id, Halvex::CommTypeCode::SBusEthernet,
                                          std::make_unique<CLinkUdp>(UdpSettings{"127.0.0.1", port}),
                                          EScan{QString::number(station), {}, {}}, registers));
    for (const auto& channel : channels)
        channel->waitForConnection();
    return channels;
}

double processorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// Returns how long it really took, in seconds.
double rest(double seconds) {
    const auto begin = CountingCore::Clock::now();
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    return std::chrono::duration<double>(CountingCore::Clock::now() - begin).count();
}

constexpr double settling = 0.2; // after the start of the last thread
constexpr double window = 1.5;

void idle(benchmark::State& state) {
    const Controller controller(sim::udpLine(1, {station}));
    CountingCore core;
    const Channels channels = connectedChannels(state.range(0), core, controller.port(), 0);
    rest(settling);
    while (state.KeepRunning()) {
        const double before = processorSeconds();
        const double passed = rest(window);
        state.SetIterationTime(passed);
        const double share = (processorSeconds() - before) / passed / static_cast<double>(state.range(0));
        state.counters["core_share_each"] = share;
    }
}
BENCHMARK(idle)->Name("IdleChannels")->Arg(1)->Arg(100)->Arg(1000)->Iterations(1)->UseManualTime();

// What as many threads cost that do nothing else than a channel without a request does between two turns.
void sleepingThreads(benchmark::State& state) {
    std::atomic<bool> ending{false};
    std::vector<std::thread> threads;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        threads.emplace_back([&ending] {
            while (!ending)
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
        });
    rest(settling);
    while (state.KeepRunning()) {
        const double before = processorSeconds();
        const double passed = rest(window);
        state.SetIterationTime(passed);
        state.counters["core_share_each"] =
            (processorSeconds() - before) / passed / static_cast<double>(state.range(0));
    }
    ending = true;
    for (std::thread& thread : threads)
        thread.join();
}
BENCHMARK(sleepingThreads)
    ->Name("SleepingThreads")
    ->Arg(1)
    ->Arg(100)
    ->Arg(1000)
    ->Iterations(1)
    ->UseManualTime();

void poll(benchmark::State& state) {
    const Controller controller(sim::udpLine(1, {station}));
    CountingCore core;
    const Channels channels = connectedChannels(state.range(0), core, controller.port(), registersInTelegram);
    rest(settling);
    while (state.KeepRunning()) {
        const std::size_t before = core.values();
        const double passed = rest(window);
        state.SetIterationTime(passed);
        const auto values = static_cast<double>(core.values() - before);
        state.counters["values_per_second"] = values / passed;
        state.counters["polls_per_second_each"] =
            values / registersInTelegram / passed / static_cast<double>(state.range(0));
    }
}
BENCHMARK(poll)->Name("PollingChannels")->Arg(1)->Arg(8)->Arg(64)->Iterations(1)->UseManualTime();

} // namespace
