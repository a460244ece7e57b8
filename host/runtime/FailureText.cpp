#include "FailureText.h"

#include "plan/TelegramTime.h"
#include "telegram/AnswerTelegram.h"
#include "telegram/Framing.h"
#include "telegram/RequestTelegram.h"
#include "telegram/TelegramText.h"

#include <algorithm>
#include <set>

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

// " (LEVEL, FLOW)": the points that a write is for.
std::string pointsOf(const RequestTelegram& write, const Rtu& rtu) {
    const auto isWritten = [&write](const ElementAddress& element) {
        return element.media == write.media && element.number >= write.first &&
               element.number - write.first < write.count;
    };
    std::string names;
    for (const Point& point : rtu.points)
        if (isWritten(point.address) || (point.secondAddress && isWritten(*point.secondAddress)))
            names += (names.empty() ? " (" : ", ") + point.name;
    return names.empty() ? "" : names + ")";
}

// "a command was not sent: write R101: 12 (LEVEL); "
std::string unsentText(const RequestEnd& end) {
    const Framing framing = framingOf(end.channel->type, end.rtu->transmitType);
    const std::optional<RequestTelegram> write = readRequest(framing, end.unsentWrite);
    if (!write)
        return {};
    const std::vector<Point>& points = end.rtu->points;
    const bool isFloat = std::any_of(points.begin(), points.end(), [&write](const Point& point) {
        return point.isFloat && point.address == ElementAddress{write->media, write->first};
    });
    return "a command was not sent: " + telegramText(framing, end.unsentWrite, isFloat) +
           pointsOf(*write, *end.rtu) + "; ";
}

std::string lineFailed(const RequestEnd& end) {
    return unsentText(end) + "the line failed; check " +
           (end.channel->type == LineType::Ethernet ? "the network of this computer"
                                                    : "that device and cable are still plugged in");
}

constexpr std::size_t mostElementsTold = 20;

// "R17, R205..207 and 4 more"
std::string elementsText(const std::vector<ElementAddress>& elements) {
    const std::set<ElementAddress> inOrder(elements.begin(), elements.end());
    std::vector<ReadTelegram> runs;
    for (const ElementAddress& element : inOrder) {
        if (!runs.empty() && runs.back().media == element.media && runs.back().last() + 1 == element.number)
            ++runs.back().count;
        else
            runs.push_back({element.media, element.number, 1});
    }
    std::string text;
    for (std::size_t i = 0; i < std::min(runs.size(), mostElementsTold); ++i)
        text += (i == 0 ? "" : ", ") + toText(runs[i]);
    return runs.size() > mostElementsTold ? text + " and more" : text;
}

} // namespace

std::string refusalNewsText(const RefusalNews& news) {
    std::string text;
    if (!news.absent.empty())
        text += "; the controller does not have " + elementsText(news.absent) +
                ": their points are refused, the others are read; correct their addresses in the point table";
    if (!news.found.empty())
        text += "; the controller has " + elementsText(news.found) + " again";
    if (!news.tooLong.empty())
        text += "; the controller refuses " + std::to_string(news.tooLong.front().count) +
                " elements in one telegram (" + toText(news.tooLong.front()) +
                "), so they are read in parts; tell its limit with " +
                (isBitMedia(news.tooLong.front().media) ? "max_read_bits" : "max_read_words") +
                ", or leave out max_gap";
    return text.empty() ? text : text.substr(2);
}

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
        return lineFailed(end);
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
