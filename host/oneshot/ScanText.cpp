#include "ScanText.h"

#include "values/ChangeText.h"
#include "values/ValueText.h"

#include <cstdio>

namespace host {

namespace {

using Kind = ScanReply::Kind;

std::string whereText(const ControllerLine& line, const ScanReply& reply) {
    std::string text = "station " + std::to_string(reply.station);
    if (const SerialEnd* const serial = std::get_if<SerialEnd>(&line.end))
        text += " at " + std::to_string(serial->baud) + " baud, transmit type " + toText(line.transmitType);
    return text + ": ";
}

std::string whatText(const ScanReply& reply) {
    const std::string element = toText(scannedElement);
    switch (reply.kind) {
    case Kind::Silent:
        return "silent";
    case Kind::Answers:
        return "answers in " + millisecondsText(reply.roundTrip) + ", " + element + " = " +
               std::to_string(reply.value);
    case Kind::Refuses:
        return "answers in " + millisecondsText(reply.roundTrip) + ", but refuses the read of " + element +
               " (" + reply.fault + ")";
    case Kind::Unclear:
        return "no answer, but something came (" + reply.fault +
               "); check for two controllers with one number, for another master, and the cable";
    case Kind::Once:
        return "answered once, and not when it was asked again; check for a controller that is slower than "
               "--timeout, and the cable";
    }
    return {};
}

const char* resultName(Kind kind) {
    switch (kind) {
    case Kind::Silent:
        break;
    case Kind::Answers:
        return "answers";
    case Kind::Refuses:
        return "refuses";
    case Kind::Unclear:
        return "unclear";
    case Kind::Once:
        return "once";
    }
    return "silent";
}

std::string millisecondsNumber(std::chrono::microseconds duration) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", static_cast<double>(duration.count()) / 1000);
    return text;
}

} // namespace

std::string wayText(const ControllerLine& line) {
    std::string text = toText(line.end);
    if (std::holds_alternative<SerialEnd>(line.end))
        text += std::string(", transmit type ") + toText(line.transmitType);
    return text;
}

std::string replyAsText(const ControllerLine& line, const ScanReply& reply) {
    return whereText(line, reply) + whatText(reply);
}

std::string replyAsJson(const ControllerLine& line, const ScanReply& reply) {
    const bool isSerial = std::holds_alternative<SerialEnd>(line.end);
    const bool hasValue = reply.kind == Kind::Answers;
    return "{\"line\":" + jsonText(toText(line.end)) +
           ",\"transmit_type\":" + (isSerial ? jsonText(toText(line.transmitType)) : "null") +
           ",\"station\":" + std::to_string(reply.station) +
           ",\"result\":" + jsonText(resultName(reply.kind)) +
           ",\"round_trip_ms\":" + millisecondsNumber(reply.roundTrip) +
           ",\"value\":" + (hasValue ? std::to_string(reply.value) : "null") + "}";
}

std::string nobodyText(const ControllerLine& line, std::size_t stations) {
    const std::string text =
        (stations == 1 ? "the station does not answer within "
                       : "none of " + std::to_string(stations) + " stations answers within ") +
        std::to_string(line.timeout.count()) + " ms; check that the controllers are on, ";
    const SerialEnd* const serial = std::get_if<SerialEnd>(&line.end);
    if (serial == nullptr)
        return text + "that " + toText(line.end) + " is their address, and try a longer --timeout";
    return text + "the cable at " + serial->device +
           ", and try other --baud and --mode, or a longer --timeout";
}

} // namespace host
