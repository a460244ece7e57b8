#include "FuzzedLine.h"

#include <HalvexDriverComponent/CReply.h>

// Polls and commands of a host, against controllers that answer, refuse, fall silent, answer late, twice or
// in pieces, over a line that fails: the plug-in's channel with its engine, its RTUs and its loop, all but
// its thread. See FuzzedLine for what must hold.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // Without a zone the C library asks the file system for it at each time stamp.
    qputenv("TZ", "UTC");
    return 0;
}

// A run takes some hundred pieces of memory. Where each was taken is worth less than the runs that it costs
// to note the whole way there.
extern "C" const char*
__asan_default_options() { // NOLINT(bugprone-reserved-identifier): the sanitizer's name
    return "malloc_context_size=2";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr LineMode modes[] = {LineMode::Ethernet, LineMode::DataMode, LineMode::BreakMode};
    FuzzInput input(data, size);
    const LineMode mode = modes[input.byte() % std::size(modes)];
    FuzzedLine(mode, input).run();
    require(CReply::liveCount() == 0, "no reply outlives its channel");
    return 0;
}
