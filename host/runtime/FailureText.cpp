#include "FailureText.h"

#include "telegram/AnswerTelegram.h"
#include "telegram/TelegramText.h"

namespace host {

namespace {

std::string noAnswer(const RequestEnd& end, const char* what) {
    const Channel& channel = *end.channel;
    const LinkEnd& used = end.onSecondary && channel.secondary ? *channel.secondary : channel.primary;
    std::string text = what + std::string(" within ") + std::to_string(end.rtu->timeout.count()) +
                       " ms; check that the controller is on and has station number " +
                       std::to_string(end.rtu->station);
    const SerialEnd* const serial = std::get_if<SerialEnd>(&used);
    if (serial == nullptr)
        return text + ", and that " + toText(used) + " is its address";
    return text + ", the cable at " + serial->device + ", and that it is set to " +
           std::to_string(serial->baud) + " baud and transmit type " + toText(end.rtu->transmitType);
}

std::string badAnswer(const RequestEnd& end) {
    const bool isSerial = end.channel->type == LineType::Serial;
    const std::string answer =
        end.exchange
            ? " (" + answerText(end.exchange->framing, end.exchange->sent, end.exchange->received, false) +
                  ")"
            : "";
    if (end.exchange && end.exchange->answer == Answer::Damaged)
        return "an answer arrived damaged" + answer + "; check " +
               (isSerial ? "cable, termination and baud rate" : "the network");
    return "an answer was not the one to the request" + answer +
           (isSerial ? "; check the transmit type, and for another master on the line"
                     : "; check for answers later than the time-out");
}

} // namespace

std::string failureReason(const RequestEnd& end) {
    switch (end.kind) {
    case RequestEnd::Kind::Answered:
        break;
    case RequestEnd::Kind::Refused:
        return "the controller refused a request (" + refusalText(end) +
               "); check that every element of its points exists in it";
    case RequestEnd::Kind::NoAnswer:
        return noAnswer(end, "no answer");
    case RequestEnd::Kind::BadAnswer:
        return badAnswer(end);
    case RequestEnd::Kind::LineFailed:
        return end.channel->type == LineType::Ethernet
                   ? "the line failed; check the network of this computer"
                   : "the line failed; check that device and cable are still plugged in";
    case RequestEnd::Kind::NotSent:
        return "the line is not open; check the messages of the line";
    }
    return {};
}

std::string cannotOpenReason(const Channel& channel) {
    const std::string lines =
        toText(channel.primary) + (channel.secondary ? " or " + toText(*channel.secondary) : "");
    return "cannot open " + lines +
           (channel.type == LineType::Serial
                ? "; check that the device is there, is not in use and may be opened by this user"
                : "; check the host name and the network");
}

std::string refusalText(const RequestEnd& end) {
    const auto code = end.exchange ? acknowledgeCodeOf(end.exchange->framing, end.exchange->received)
                                   : std::optional<unsigned>();
    return code ? "acknowledge code " + std::to_string(*code) : "negative acknowledge";
}

std::string nameOf(const Channel& channel, const Rtu* rtu) {
    std::string text = "channel " + std::to_string(channel.id) + " \"" + channel.name + "\"";
    if (rtu != nullptr)
        text += ", RTU " + std::to_string(rtu->id) + " \"" + rtu->name + "\" (station " +
                std::to_string(rtu->station) + ")";
    return text;
}

} // namespace host
