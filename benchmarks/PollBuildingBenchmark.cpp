#include "BenchChannel.h"
#include "HeapUse.h"

#include <benchmark/benchmark.h>

// From the host's point list to the three polls, as at the start of a channel. Splitting an address is done
// once in a record's life: the list is given its configured addresses back before each round.

namespace {

void buildsPolls(benchmark::State& state) {
    const std::size_t before = heapBytes();
    BenchChannel channel;
    channel.addRegisters(static_cast<unsigned>(state.range(0)));
    const std::size_t listed = heapBytes();
    channel.rtu().InitRtu();
    const std::size_t built = heapBytes();
    while (state.KeepRunning()) {
        state.PauseTiming();
        channel.rtu().GetPointList()->RestoreAnalogPoints();
        state.ResumeTiming();
        channel.rtu().InitRtu();
    }
    const auto points = static_cast<double>(state.range(0));
    state.counters["bytes_per_listed_point"] = static_cast<double>(listed - before) / points;
    state.counters["bytes_per_polled_point"] = static_cast<double>(built - before) / points;
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(buildsPolls)->Name("PollBuilding/points")->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
