#include "Controller.h"
#include "CountingCore.h"
#include "LiveChannel.h"

#include <HalvexDriverLink/CLinkSerial.h>

#include <benchmark/benchmark.h>

#include <thread>

// Polls over a simulated serial line whose bytes take their time, through a whole channel with its thread and
// its rest of 10 ms between two polls. The measure is the share of that time in which the line could not have
// been faster: that of all bytes of both directions, and in Break Mode of the break before each request. The
// break is the driver's to wait for; a pseudo-terminal does not carry it.

namespace {

constexpr int station = 1;
constexpr unsigned registersInTelegram = 127;

struct Line {
    sim::Framing framing;
    const char* transmitType;
    std::chrono::milliseconds breakDelay; // before each request
    SerialParity parity;
    sim::Parity simulatedParity;
};

// A byte has 10 bits on the line.
constexpr Line dataMode{sim::Framing::DataMode, "0", std::chrono::milliseconds(0), SerialParity::None,
                        sim::Parity::None};
// A byte has 11 bits on the line.
constexpr Line breakMode{sim::Framing::BreakMode, "1", std::chrono::milliseconds(10), SerialParity::Even,
                         sim::Parity::Even};

void serialPolls(benchmark::State& state, const Line& line, unsigned baud, unsigned telegrams) {
    sim::SerialSettings settings;
    settings.baud = baud;
    settings.parity = line.simulatedParity;
    sim::Options options;
    options.pace = true;
    const Controller controller(sim::serialLine(1, {station}, line.framing, {}, settings), options);
    CountingCore core;
    core.keepTimes();
    const LiveChannel channel(
        core, 1, Halvex::CommTypeCode::SBusSerial,
        std::make_unique<CLinkSerial>(SerialSettings{controller.device(), baud, 8, line.parity, 1}),
        EScan{QString::number(station), QString::fromLatin1(line.transmitType),
              QString::number(line.breakDelay.count())},
        telegrams * registersInTelegram);
    channel.waitForConnection();
    constexpr std::size_t polls = 3; // the first one, while the channel connects, is left out
    while (state.KeepRunning()) {
        while (core.publications().size() < polls && !core.hasFailures())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (core.hasFailures()) {
            state.counters["line_share"] = 0; // none: the machine was too busy to pace the line
            state.SetIterationTime(1);
            continue;
        }
        const auto ends = core.publications();
        const std::chrono::duration<double> passed = ends[polls - 1] - ends[0];
        // The body, and the start, attribute and checksum bytes that the mode has.
        const bool data = line.framing == sim::Framing::DataMode;
        const int bytesOfRequest = data ? 9 : 7;
        const int bytesOfAnswer = static_cast<int>(registersInTelegram) * 4 + (data ? 4 : 2);
        const double exchanges = static_cast<double>(polls - 1) * telegrams;
        const std::chrono::duration<double> lineTime =
            exchanges * ((bytesOfRequest + bytesOfAnswer) * settings.characterTime() + line.breakDelay);
        state.SetIterationTime(passed.count());
        state.counters["line_share"] = lineTime / passed;
    }
}
// Polls long enough that the rest between two of them is a small part.
BENCHMARK_CAPTURE(serialPolls, data, dataMode, 19'200, 5)
    ->Name("SerialLine/data/19200")
    ->Iterations(1)
    ->UseManualTime();
BENCHMARK_CAPTURE(serialPolls, data, dataMode, 115'200, 20)
    ->Name("SerialLine/data/115200")
    ->Iterations(1)
    ->UseManualTime();
BENCHMARK_CAPTURE(serialPolls, break, breakMode, 19'200, 5)
    ->Name("SerialLine/break/19200")
    ->Iterations(1)
    ->UseManualTime();
BENCHMARK_CAPTURE(serialPolls, break, breakMode, 115'200, 20)
    ->Name("SerialLine/break/115200")
    ->Iterations(1)
    ->UseManualTime();

} // namespace
