#include "Forecast.h"

namespace host {

namespace {

// The driver's channel rests so long after each request that it has carried out.
constexpr double pausePerPollMs = 10;

struct TelegramFrame {
    std::size_t requestBytes;
    std::size_t answerBytes; // around the payload
    unsigned breakMs;        // before the request
};

TelegramFrame frameFor(const Channel& channel, const Rtu& rtu) {
    if (channel.type == LineType::Ethernet)
        return {16, 11, 0}; // the 9 bytes in front; 5 of the body; 2 of the checksum
    if (rtu.transmitType == TransmitType::Data)
        return {9, 4, 0}; // synchronisation byte and attribute; the body; the checksum
    return {7, 2, rtu.breakDelayMs};
}

std::size_t payloadBytes(const ReadTelegram& telegram) {
    return isBitMedia(telegram.media) ? (telegram.count + 7) / 8 : std::size_t{4} * telegram.count;
}

double millisecondsPerByte(const Channel& channel) {
    const SerialEnd* const serial = std::get_if<SerialEnd>(&channel.primary);
    return serial == nullptr ? 0 : 1000.0 * bitsPerCharacter(*serial) / serial->baud;
}

PollForecast forecastPoll(const Channel& channel, const Rtu& rtu,
                          const std::vector<ReadTelegram>& telegrams) {
    const TelegramFrame frame = frameFor(channel, rtu);
    PollForecast poll;
    poll.telegrams = telegrams.size();
    for (const ReadTelegram& telegram : telegrams) {
        poll.bytes += frame.requestBytes + frame.answerBytes + payloadBytes(telegram);
        poll.milliseconds += frame.breakMs;
    }
    poll.milliseconds += static_cast<double>(poll.bytes) * millisecondsPerByte(channel);
    if (poll.telegrams > 0)
        poll.milliseconds += pausePerPollMs;
    return poll;
}

double shareOf(const PollForecast& poll, std::chrono::milliseconds period) {
    return poll.milliseconds / static_cast<double>(period.count());
}

RtuForecast forecastRtu(const Channel& channel, const Rtu& rtu) {
    RtuForecast forecast;
    forecast.rtu = &rtu;
    forecast.plan = planReads(rtu);
    std::vector<ReadTelegram> all = forecast.plan.status;
    all.insert(all.end(), forecast.plan.analog.begin(), forecast.plan.analog.end());
    forecast.integrity = forecastPoll(channel, rtu, all);
    forecast.status = forecastPoll(channel, rtu, forecast.plan.status);
    forecast.analog = forecastPoll(channel, rtu, forecast.plan.analog);
    forecast.share = shareOf(forecast.integrity, rtu.scan.integrity) +
                     shareOf(forecast.status, rtu.scan.status) + shareOf(forecast.analog, rtu.scan.analog);
    return forecast;
}

} // namespace

unsigned bitsPerCharacter(const SerialEnd& end) {
    const unsigned parityBits = end.parity == SerialEnd::Parity::None ? 0 : 1;
    return 1 + end.dataBits + parityBits + end.stopBits;
}

LineForecast forecastLine(const Channel& channel) {
    LineForecast line;
    line.channel = &channel;
    for (const Rtu& rtu : channel.rtus) {
        if (!rtu.enabled)
            continue;
        line.rtus.push_back(forecastRtu(channel, rtu));
        line.share += line.rtus.back().share;
    }
    return line;
}

} // namespace host
