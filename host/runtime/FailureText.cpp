#include "FailureText.h"

#include "plan/TelegramTime.h"
#include "telegram/AnswerTelegram.h"
#include "telegram/TelegramText.h"

namespace host {

namespace {

const LinkEnd& usedEnd(const RequestEnd& end) {
    return linkEndOf(*end.channel, end.onSecondary);
}

std::size_t writeAnswerBytes(Framing framing) {
    return framing == Framing::BreakMode ? 1 : 6; // an acknowledge
}

// Why the telegram could not be answered in time, even by the quickest controller; nothing when it could.
std::optional<Obstacle> obstacleTo(const RequestEnd& end) {
    if (!end.exchange)
        return std::nullopt;
    const Exchange& exchange = *end.exchange;
    const std::optional<RequestTelegram> request = readRequest(exchange.framing, exchange.sent);
    if (!request)
        return std::nullopt;
    TelegramCost cost{exchange.sent.size(), writeAnswerBytes(exchange.framing), 0};
    if (request->purpose == RequestTelegram::Purpose::Read)
        cost = costOf(*end.channel, *end.rtu,
                      {request->media, request->first, static_cast<unsigned>(request->count)});
    return obstacleTo(cost, usedEnd(end), end.rtu->timeout);
}

std::string withObstacle(const std::string& text, const Obstacle& obstacle) {
    return text + ": " + obstacle.what + "; " + obstacle.remedy;
}

std::string noAnswer(const RequestEnd& end) {
    std::string text = "no answer within " + std::to_string(end.rtu->timeout.count()) + " ms";
    // Besides, nobody may be there: not a byte came.
    if (const std::optional<Obstacle> obstacle = obstacleTo(end))
        text = withObstacle(text, *obstacle);
    text += "; check that the controller is on and has station number " + std::to_string(end.rtu->station);
    const LinkEnd& used = usedEnd(end);
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
    if (end.exchange && end.exchange->answer == Answer::Damaged) {
        if (const std::optional<Obstacle> obstacle = obstacleTo(end))
            return withObstacle("an answer arrived damaged" + answer, *obstacle);
        return "an answer arrived damaged" + answer + "; check " +
               (isSerial ? "cable, termination and baud rate" : "the network");
    }
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
        return noAnswer(end);
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

const LinkEnd& linkEndOf(const Channel& channel, bool onSecondary) {
    return onSecondary && channel.secondary ? *channel.secondary : channel.primary;
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
