#include "Steps.h"

#include <benchmark/benchmark.h>

// What a published value and a logged byte cost, without link and telegram around them.

namespace {

void publishes(benchmark::State& state, Publication::Kind kind) {
    Publication publication(kind);
    while (state.KeepRunning())
        publication.run();
    state.SetItemsProcessed(state.iterations() * registersInTelegram);
}
BENCHMARK_CAPTURE(publishes, registers, Publication::Kind::Registers)->Name("Publishing/register");
BENCHMARK_CAPTURE(publishes, flags, Publication::Kind::Flags)->Name("Publishing/flag");

void logs(benchmark::State& state, FrameDump::Trace trace) {
    FrameDump dump(trace);
    while (state.KeepRunning())
        dump.run();
    state.SetItemsProcessed(state.iterations() * dump.bytes());
}
BENCHMARK_CAPTURE(logs, off, FrameDump::Trace::Off)->Name("FrameLog/trace_off");
BENCHMARK_CAPTURE(logs, on, FrameDump::Trace::On)->Name("FrameLog/trace_on");

} // namespace
