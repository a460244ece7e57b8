#include <runtime/LineObserver.h>

#include <benchmark/benchmark.h>

#include <array>

// What the host's look at the wire costs: a read of 127 registers, from the telegram sent to the end of its
// request, while nobody watches the exchanges.

namespace {

constexpr int answerBytes = 519;

void observesAnExchange(benchmark::State& state) {
    host::Channel channel;
    channel.id = 1;
    channel.rtus.emplace_back();
    host::ExchangeFeed feed;
    host::LineObserver line(channel, feed, [](bool, int) {});
    LinkObserver& end = line.primaryEnd();
    end.linkOpened(0);
    // Length, version, protocol type, sequence number, attribute, station 5, read registers, 127 from 0,
    // checksum.
    const std::array<char, 16> request{0, 0, 0, 16, 1, 0, 0, 0, 0, 5, 6, 126, 0, 0, 0, 0};
    const std::array<char, answerBytes> answer{};
    const auto now = LinkObserver::Clock::now();
    while (state.KeepRunning()) {
        end.telegramSent(request.data(), static_cast<int>(request.size()), now);
        end.bytesReceived(answer.data(), answerBytes, now);
        benchmark::DoNotOptimize(line.endRequest());
    }
}
BENCHMARK(observesAnExchange)->Name("Exchange/unwatched");

} // namespace
