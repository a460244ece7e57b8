#include "TelegramTime.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr std::chrono::milliseconds ethernetAnswer{10};

// The driver takes a silence of so many milliseconds behind a byte for the end of the answer.
constexpr double endOfAnswerMs = 20;

std::size_t payloadBytes(const ReadTelegram& telegram) {
    return isBitMedia(telegram.media) ? (telegram.count + 7) / 8 : std::size_t{4} * telegram.count;
}

TelegramCost frameOf(const Channel& channel, const Rtu& rtu) {
    if (channel.type == LineType::Ethernet)
        return {16, 11, 0}; // the 9 bytes in front; 5 of the body; 2 of the checksum
    if (rtu.transmitType == TransmitType::Data)
        return {9, 4, 0}; // synchronisation byte and attribute; the body; the checksum
    return {7, 2, rtu.breakDelayMs};
}

} // namespace

TelegramCost costOf(const Channel& channel, const Rtu& rtu, const ReadTelegram& telegram) {
    TelegramCost cost = frameOf(channel, rtu);
    cost.answerBytes += payloadBytes(telegram);
    return cost;
}

unsigned bitsPerCharacter(const SerialEnd& end) {
    const unsigned parityBits = end.parity == SerialEnd::Parity::None ? 0 : 1;
    return 1 + end.dataBits + parityBits + end.stopBits;
}

double byteTimeOf(const LinkEnd& end, std::size_t bytes) {
    const SerialEnd* const serial = std::get_if<SerialEnd>(&end);
    return serial == nullptr ? 0
                             : 1000.0 * bitsPerCharacter(*serial) * static_cast<double>(bytes) / serial->baud;
}

std::chrono::milliseconds expectedAnswerOf(const Channel& channel) {
    const auto usual =
        channel.type == LineType::Ethernet ? ethernetAnswer : std::chrono::milliseconds::zero();
    return channel.expectedAnswer.value_or(usual);
}

std::optional<Obstacle> obstacleTo(const TelegramCost& cost, const LinkEnd& end,
                                   std::chrono::milliseconds timeout) {
    const SerialEnd* const serial = std::get_if<SerialEnd>(&end);
    if (serial == nullptr)
        return std::nullopt;
    const std::string rate = std::to_string(serial->baud) + " baud";
    const double characterMs = byteTimeOf(end, 1);
    if (cost.answerBytes > 1 && characterMs >= endOfAnswerMs)
        return Obstacle{"at " + rate + " a byte takes " + lineTimeText(characterMs) +
                            ", and the driver takes a silence of 20 ms for the end of an answer",
                        "raise the baud rate"};
    const double milliseconds = byteTimeOf(end, cost.bytes());
    if (milliseconds < static_cast<double>(timeout.count()))
        return std::nullopt;
    return Obstacle{"request and answer take " + lineTimeText(milliseconds) + " at " + rate +
                        ", and the time-out is " + std::to_string(timeout.count()) + " ms",
                    "raise the baud rate, raise the time-out to " + ampleTimeoutText(milliseconds) +
                        ", or let the telegram have fewer elements"};
}

std::string lineTimeText(double milliseconds) {
    const long tenths = std::lround(milliseconds * 10);
    std::string text = std::to_string(milliseconds < 100 ? tenths / 10 : std::lround(milliseconds));
    if (milliseconds < 100 && tenths % 10 != 0)
        text += "." + std::to_string(tenths % 10);
    return text + " ms";
}

std::string ampleTimeoutText(double milliseconds) {
    constexpr double step = 100;
    const double ample = std::ceil(2 * milliseconds / step) * step;
    return std::to_string(std::lround(std::max(ample, step))) + "ms";
}

} // namespace host
