#include "Steps.h"

#include <functional>
#include <iostream>
#include <map>

// sbus-instructions STEP COUNT: runs a step so often, for a simulator of the processor to count what
// measuredStep() takes. See measure.py.

// Not inlined: the counting begins and ends with it.
[[gnu::noinline]] void measuredStep(const std::function<void()>& step) {
    step();
}

namespace {

// Memory is reserved and code is loaded by then.
constexpr int warmUps = 50;

void repeat(int count, const std::function<void()>& step, const std::function<void()>& preparation = {}) {
    for (int i = 0; i < warmUps + count; ++i) {
        if (preparation)
            preparation();
        if (i < warmUps)
            step();
        else
            measuredStep(step);
    }
}

void repeatPublication(int count, Publication::Kind kind) {
    Publication publication(kind);
    repeat(count, [&] { publication.run(); });
}

void repeatDump(int count, FrameDump::Trace trace) {
    FrameDump dump(trace);
    repeat(count, [&] { dump.run(); });
}

void repeatPoll(int count) {
    EthernetPoll poll;
    repeat(
        count, [&] { poll.process(); }, [&] { poll.request(); });
}

const std::map<std::string, void (*)(int)> steps{
    {"poll", repeatPoll},
    {"register", [](int count) { repeatPublication(count, Publication::Kind::Registers); }},
    {"flag", [](int count) { repeatPublication(count, Publication::Kind::Flags); }},
    {"trace_off", [](int count) { repeatDump(count, FrameDump::Trace::Off); }},
    {"trace_on", [](int count) { repeatDump(count, FrameDump::Trace::On); }},
};

} // namespace

int main(int argc, char** argv) {
    const auto step = steps.find(argc == 3 ? argv[1] : "");
    if (step == steps.end()) {
        std::cerr << "sbus-instructions poll|register|flag|trace_off|trace_on COUNT\n";
        return 2;
    }
    step->second(std::stoi(argv[2]));
    return 0;
}
