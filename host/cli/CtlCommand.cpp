#include "CtlCommand.h"

#include "ControlClient.h"
#include "ReplyText.h"
#include "runtime/ExchangeText.h"
#include "services/console/StopSignal.h"
#include "services/console/Terminal.h"
#include "services/control/SocketPath.h"
#include "site/CountText.h"
#include "values/TimeText.h"

#include <ControlCharacters.h>
#include <QDateTime>
#include <QFileInfo>
#include <QJsonDocument>

#include <cmath>
#include <iostream>

namespace host {

namespace {

std::string noHostText(const CtlOptions& options) {
    if (!options.socketPath.empty())
        return "no sbus-host listens at " + options.socketPath + "; start one with: sbus-host run " +
               options.sitePath + " --control " + options.socketPath;
    return "no sbus-host runs " + options.sitePath + "; start one with: sbus-host run " + options.sitePath;
}

ExitStatus tellFault(const std::string& fault, ExitStatus status) {
    std::cerr << "sbus-host: " << text::printable(fault) << '\n';
    return status;
}

ExitStatus tellEnd() {
    return tellFault("the host has ended the connection; see what it says on its own terminal or in its log",
                     ExitStatus::CommunicationFailed);
}

ExitStatus tellInterruption() {
    return tellFault("interrupted before the host has replied; it goes on with what it was asked for",
                     ExitStatus::CommunicationFailed);
}

ExitStatus tellStranger(const QByteArray& line) {
    constexpr std::size_t longest = 80; // bytes that show what it is
    return tellFault("what answers is no sbus-host of this kind; it says: " +
                         line.toStdString().substr(0, longest),
                     ExitStatus::CommunicationFailed);
}

QJsonObject parse(const QByteArray& line) {
    return QJsonDocument::fromJson(line).object();
}

void showReply(const CtlOptions& options, const QByteArray& line, const QJsonObject& reply) {
    if (options.json)
        std::cout << text::printableJson(line.toStdString()) << '\n';
    else if (reply.contains(QStringLiteral("results")))
        std::cout << resultsText(reply);
    else if (reply.contains(QStringLiteral("channels")))
        std::cout << statusText(reply);
    const QString fault = reply.value(QStringLiteral("error")).toString();
    if (!options.json && !fault.isEmpty())
        std::cerr << "sbus-host: " << text::printable(fault.toStdString()) << '\n';
    std::cout << std::flush;
}

// A line of a watch or a trace for people; empty for one that is neither.
std::string eventText(const QJsonObject& message) {
    const QJsonValue change = message.value(QStringLiteral("change"));
    if (change.isObject())
        return changeText(change.toObject()) + '\n';
    const QJsonValue exchange = message.value(QStringLiteral("exchange"));
    std::string text;
    if (exchange.isObject())
        for (const std::string& line : exchangeLines(exchange.toObject()))
            text += text::printable(line) + '\n';
    const QJsonValue lost = message.value(QStringLiteral("lost"));
    if (lost.isDouble())
        text = localTimeText(QDateTime::currentMSecsSinceEpoch()) + "  " +
               countWereText(static_cast<std::uint64_t>(lost.toDouble()), "exchange") +
               " lost: more came than was read\n";
    return text;
}

// Until a signal comes, the host ends, or nobody reads the output any more.
ExitStatus showEvents(const CtlOptions& options, ControlClient& client) {
    while (std::cout) {
        const std::optional<QByteArray> line = client.nextLine(stopsignal::isRequested);
        if (!line)
            return stopsignal::isRequested() ? ExitStatus::Good : tellEnd();
        const QJsonObject message = parse(*line);
        const std::string text = eventText(message);
        if (text.empty()) { // why the host will tell no more
            if (message.isEmpty())
                return tellStranger(*line);
            showReply(options, *line, message);
            return judgeReply(message);
        }
        std::cout << (options.json ? text::printableJson(line->toStdString()) + '\n' : text) << std::flush;
    }
    return ExitStatus::Good; // nobody reads any more
}

} // namespace

ExitStatus askRunningHost(const CtlOptions& options) {
    if (!QFileInfo::exists(QString::fromStdString(options.sitePath)))
        return tellFault("there is no site file " + options.sitePath, ExitStatus::Configuration);
    terminal::survivePipeEnd();
    stopsignal::install();
    ControlClient client;
    const bool isConnected =
        client.connectTo(options.socketPath.empty() ? controlSocketPaths(options.sitePath)
                                                    : std::vector<std::string>{options.socketPath});
    if (!isConnected)
        return tellFault(noHostText(options), ExitStatus::CommunicationFailed);
    if (!client.send(requestLine({QJsonValue::Undefined, options.request})))
        return tellEnd();
    const std::optional<QByteArray> line = client.nextLine(stopsignal::isRequested);
    if (!line)
        return stopsignal::isRequested() ? tellInterruption() : tellEnd();
    const QJsonObject reply = parse(*line);
    if (reply.isEmpty())
        return tellStranger(*line);
    const bool wantsEvents = std::holds_alternative<WatchRequest>(options.request) ||
                             std::holds_alternative<TraceRequest>(options.request);
    if (wantsEvents && reply.value(QStringLiteral("ok")).toBool()) {
        if (options.json)
            showReply(options, *line, reply);
        return showEvents(options, client);
    }
    showReply(options, *line, reply);
    return judgeReply(reply);
}

std::optional<PointValue> parsePointValue(const std::string& text) {
    const std::size_t sign = text.rfind('=');
    if (sign == std::string::npos || sign == 0)
        return std::nullopt;
    const std::string point = text.substr(0, sign);
    const std::string value = text.substr(sign + 1);
    if (value == "on" || value == "true")
        return PointValue{point, 1};
    if (value == "off" || value == "false")
        return PointValue{point, 0};
    bool isNumber = false;
    const double number = QByteArray::fromStdString(value).toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number))
        return std::nullopt;
    return PointValue{point, number};
}

} // namespace host
