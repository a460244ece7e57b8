#include "CapturedDatagrams.h"

#include "EthernetForm.h"

#include <algorithm>

namespace host {

namespace {

constexpr std::uint16_t controllerPort = 5050;
constexpr std::uint16_t hostPort = 49'152; // the first of those that belong to nobody
constexpr std::uint32_t network = 0x0A00'0000;

// A telegram is far shorter than a datagram can be, but what a line throws away need not be.
std::size_t countPieces(const TelegramBytes& bytes) {
    return (bytes.size() + largestPayload - 1) / largestPayload;
}

void addPieces(std::vector<Datagram>& datagrams, const Datagram& whole) {
    for (std::size_t start = 0; start < whole.payload.size(); start += largestPayload) {
        const std::size_t size = std::min(largestPayload, whole.payload.size() - start);
        const auto from = whole.payload.begin() + static_cast<std::ptrdiff_t>(start);
        datagrams.push_back(
            {whole.time, whole.from, whole.to, {from, from + static_cast<std::ptrdiff_t>(size)}});
    }
}

bool isSound(Answer answer) {
    return answer == Answer::Good || answer == Answer::Refused;
}

struct Telegrams {
    TelegramBytes request;
    TelegramBytes answer;
};

Telegrams telegramsOf(const Exchange& exchange, std::uint16_t sequence) {
    Telegrams telegrams{exchange.sent, exchange.received};
    const auto request = requestAsEthernet(exchange.sent, exchange.framing, sequence);
    if (!request)
        return telegrams;
    telegrams.request = *request;
    if (isSound(exchange.answer))
        telegrams.answer =
            answerAsEthernet(exchange.received, exchange.framing, sequence).value_or(exchange.received);
    return telegrams;
}

} // namespace

Ipv4End controllerEnd(int channelId, bool onSecondary, unsigned station) {
    constexpr unsigned endsOfOneByte = 127; // pairs from 1 and 2 to 253 and 254
    const auto channel = static_cast<unsigned>(channelId);
    const unsigned end = (onSecondary ? 2 : 1) + 2 * (channel / 256 % endsOfOneByte);
    return {network | (channel & 0xFF) << 16 | end << 8 | (station & 0xFF), controllerPort};
}

Ipv4End hostEnd() {
    return {network | 1, hostPort};
}

std::size_t countDatagrams(const Exchange& exchange) {
    return countPieces(exchange.discarded) + countPieces(exchange.sent) + countPieces(exchange.received);
}

std::vector<Datagram> CapturedDatagrams::make(const Exchange& exchange) {
    const Ipv4End controller = controllerEnd(exchange.channelId, exchange.onSecondary, exchange.station);
    const Telegrams telegrams = telegramsOf(exchange, nextSequences[exchange.channelId]++);
    const auto answered =
        exchange.sentAt + std::chrono::duration_cast<std::chrono::system_clock::duration>(exchange.roundTrip);
    std::vector<Datagram> datagrams;
    addPieces(datagrams, {exchange.sentAt, controller, hostEnd(), exchange.discarded});
    addPieces(datagrams, {exchange.sentAt, hostEnd(), controller, telegrams.request});
    addPieces(datagrams, {answered, controller, hostEnd(), telegrams.answer});
    return datagrams;
}

} // namespace host
