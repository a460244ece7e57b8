#include "ExchangeText.h"

#include "telegram/TelegramText.h"
#include "values/ValueText.h"

#include <QDateTime>

#include <algorithm>

namespace host {

namespace {

constexpr std::size_t bytesOfALine = 32;

std::string nameOfChannel(const Site& site, int id) {
    const auto found = std::find_if(site.channels.begin(), site.channels.end(),
                                    [id](const Channel& channel) { return channel.id == id; });
    return found == site.channels.end() ? std::to_string(id) : found->name;
}

std::int64_t millisecondsOf(std::chrono::system_clock::time_point time) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

const char* wordFor(Answer answer) {
    switch (answer) {
    case Answer::Good:
        return "good";
    case Answer::Refused:
        return "refused";
    case Answer::Damaged:
        return "damaged";
    case Answer::Silent:
        return "silent";
    case Answer::Foreign:
        break;
    }
    return "foreign";
}

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

std::string field(const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toString().toStdString();
}

// Three characters of hex text a byte.
void addBytes(std::vector<std::string>& lines, const std::string& hex) {
    constexpr std::size_t width = 3 * bytesOfALine;
    for (std::size_t begin = 0; begin < hex.size(); begin += width) {
        std::string row = hex.substr(begin, width);
        if (row.back() == ' ')
            row.pop_back();
        lines.push_back("    " + row);
    }
}

} // namespace

QJsonObject exchangeAsJson(const Site& site, const Exchange& exchange) {
    const bool hasAnswer = !exchange.received.empty();
    return {{QStringLiteral("time"), text(utcTimeText(millisecondsOf(exchange.sentAt)))},
            {QStringLiteral("channel"), text(nameOfChannel(site, exchange.channelId))},
            {QStringLiteral("end"), text(exchange.onSecondary ? "secondary" : "primary")},
            {QStringLiteral("station"), static_cast<int>(exchange.station)},
            {QStringLiteral("request"), text(telegramText(exchange.framing, exchange.sent, false))},
            {QStringLiteral("answer"),
             text(answerText(exchange.framing, exchange.sent, exchange.received, false))},
            {QStringLiteral("meaning"), text(wordFor(exchange.answer))},
            {QStringLiteral("round_trip_ms"),
             hasAnswer ? QJsonValue(static_cast<double>(exchange.roundTrip.count()) / 1000) : QJsonValue()},
            {QStringLiteral("line_failed"), exchange.hasLineFailed},
            {QStringLiteral("sent"), text(hexText(exchange.sent))},
            {QStringLiteral("received"), text(hexText(exchange.received))},
            {QStringLiteral("discarded"), text(hexText(exchange.discarded))}};
}

std::vector<TelegramLine> telegramsOf(const QJsonObject& exchange) {
    const std::int64_t sentAt =
        QDateTime::fromString(exchange.value(QStringLiteral("time")).toString(), Qt::ISODateWithMs)
            .toMSecsSinceEpoch();
    const QJsonValue roundTrip = exchange.value(QStringLiteral("round_trip_ms"));
    const std::string who = field(exchange, "channel") +
                            (field(exchange, "end") == "secondary" ? " (secondary)" : "") + ", station " +
                            std::to_string(exchange.value(QStringLiteral("station")).toInt()) + "  ";
    std::vector<TelegramLine> telegrams;
    if (const std::string discarded = field(exchange, "discarded"); !discarded.empty())
        telegrams.push_back({sentAt, who + "thrown away unread", discarded});
    telegrams.push_back({sentAt, who + "<< " + field(exchange, "request"), field(exchange, "sent")});
    const std::string took =
        roundTrip.isNull() ? "" : " (" + QString::number(roundTrip.toDouble(), 'f', 2).toStdString() + " ms)";
    telegrams.push_back(
        {sentAt + static_cast<std::int64_t>(roundTrip.toDouble()),
         who + ">> " + field(exchange, "answer") +
             (exchange.value(QStringLiteral("line_failed")).toBool() ? ", the line failed" : "") + took,
         field(exchange, "received")});
    return telegrams;
}

std::vector<std::string> exchangeLines(const QJsonObject& exchange) {
    std::vector<std::string> lines;
    for (const TelegramLine& telegram : telegramsOf(exchange)) {
        lines.push_back(localTimeText(telegram.timeMs) + "  " + telegram.text);
        addBytes(lines, telegram.hex);
    }
    return lines;
}

} // namespace host
