#include "BenchChannel.h"

#include <benchmark/benchmark.h>

// From the host's point list to the three polls, as at the start of a channel. Splitting an address is done
// once in a record's life: the list is given its configured addresses back before each round.

namespace {

void buildsPolls(benchmark::State& state) {
    BenchChannel channel;
    channel.addRegisters(static_cast<unsigned>(state.range(0)));
    while (state.KeepRunning()) {
        state.PauseTiming();
        channel.rtu().GetPointList()->RestoreAnalogPoints();
        state.ResumeTiming();
        channel.rtu().InitRtu();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(buildsPolls)->Name("PollBuilding/points")->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
