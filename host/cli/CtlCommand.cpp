#include "CtlCommand.h"

#include "ControlClient.h"
#include "ReplyText.h"
#include "runtime/ExchangeText.h"
#include "services/console/StopSignal.h"
#include "services/console/Terminal.h"
#include "services/control/SocketPath.h"
#include "site/CountText.h"
#include "site/SiteFile.h"
#include "site/SwitchWord.h"
#include "values/TimeText.h"
#include <OutputReader.h>

#include <ControlCharacters.h>
#include <QDateTime>
#include <QFileInfo>
#include <QJsonDocument>

#include <chrono>
#include <cmath>
#include <iostream>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds replyPatience{10}; // for what a host answers at once, when it works

// Where the host may listen, and who it may be.
struct Host {
    SocketPaths sockets;
    std::string given; // the path that was named, if one was
    std::optional<GroupId> group;
};

Host findHost(const CtlOptions& options) {
    const ControlSettings settings = loadControlSettings(options.sitePath);
    Host host;
    if (!settings.group.empty())
        host.group = findGroup(settings.group);
    host.given = options.socketPath.empty() ? settings.socket : fullSocketPath(options.socketPath);
    if (host.given.empty())
        host.sockets = findControlSockets(options.sitePath, host.group);
    else
        host.sockets.paths = {host.given};
    return host;
}

// They may run the site: what is in their directories, nobody else sees.
std::string otherUsersText(const SocketPaths& sockets) {
    std::string text;
    for (const std::string& user : sockets.otherUsers)
        text += (text.empty() ? "; hosts of other users take no commands without permission, here of user id "
                              : ", ") +
                user;
    return text;
}

std::string noHostText(const CtlOptions& options, const Host& host) {
    if (!options.socketPath.empty())
        return "no sbus-host listens at " + host.given + "; start one with: sbus-host run " +
               options.sitePath + " --control " + options.socketPath;
    const std::string start = "; start one with: sbus-host run " + options.sitePath;
    if (!host.given.empty())
        return "no sbus-host listens at " + host.given + ", which the site file names" + start;
    return "no sbus-host of this user runs " + options.sitePath + start + otherUsersText(host.sockets);
}

ExitStatus tellFault(const std::string& fault, ExitStatus status) {
    std::cerr << "sbus-host: " << text::printable(fault) << '\n';
    return status;
}

ExitStatus tellEnd(const ControlClient& client) {
    if (client.wasLineTooLong())
        return tellFault("the reply is longer than " + std::to_string(ControlClient::longestReplyLine) +
                             " bytes, which no sbus-host sends",
                         ExitStatus::CommunicationFailed);
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
    const auto isOver = [] { return stopsignal::isRequested() || outputreader::isGone(); };
    while (std::cout) {
        const std::optional<QByteArray> line = client.nextLine(isOver);
        if (!line)
            return isOver() ? ExitStatus::Good : tellEnd(client);
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

// Commands take as long as their controllers.
bool isAnsweredAtOnce(const RequestAction& action) {
    return !std::holds_alternative<WriteRequest>(action) &&
           !std::holds_alternative<TimeSyncRequest>(action) && !std::holds_alternative<WatchRequest>(action);
}

ExitStatus tellSilence() {
    return tellFault("the host does not reply within " + std::to_string(replyPatience.count()) +
                         " s: it is stopped or overloaded; look at its own terminal or its log",
                     ExitStatus::CommunicationFailed);
}

ExitStatus ask(const CtlOptions& options, ControlClient& client) {
    if (!client.send(requestLine({QJsonValue::Undefined, options.request})))
        return tellEnd(client);
    const auto deadline = Clock::now() + replyPatience;
    const bool hasDeadline = isAnsweredAtOnce(options.request);
    const auto isTooLate = [&] { return hasDeadline && Clock::now() > deadline; };
    const std::optional<QByteArray> line =
        client.nextLine([&] { return stopsignal::isRequested() || isTooLate(); });
    if (!line && stopsignal::isRequested())
        return tellInterruption();
    if (!line)
        return isTooLate() && !client.wasLineTooLong() ? tellSilence() : tellEnd(client);
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

} // namespace

ExitStatus askRunningHost(const CtlOptions& options) {
    if (!QFileInfo::exists(QString::fromStdString(options.sitePath)))
        return tellFault("there is no site file " + options.sitePath, ExitStatus::Configuration);
    terminal::survivePipeEnd();
    stopsignal::install();
    const Host host = findHost(options);
    ControlClient client([group = host.group, service = host.sockets.serviceUser](const Peer& peer) {
        return ControlClient::isOwnUserOrRoot(peer) || (group && isMember(peer, *group)) ||
               (service && peer.user == *service);
    });
    const bool isConnected = client.connectTo(host.sockets.paths);
    for (const std::string& fault : host.sockets.passedOver)
        tellFault(fault + "; it is passed over", ExitStatus::Good);
    for (const std::string& fault : client.faults())
        tellFault(fault, ExitStatus::Good);
    if (isConnected)
        return ask(options, client);
    if (!client.faults().empty())
        return ExitStatus::CommunicationFailed;
    return tellFault(noHostText(options, host), ExitStatus::CommunicationFailed);
}

std::optional<PointValue> parsePointValue(const std::string& text) {
    const std::size_t sign = text.rfind('=');
    if (sign == std::string::npos || sign == 0)
        return std::nullopt;
    const std::string point = text.substr(0, sign);
    const std::string value = text.substr(sign + 1);
    if (const std::optional<bool> word = parseSwitchWord(value))
        return PointValue{point, *word ? 1.0 : 0.0};
    bool isNumber = false;
    const double number = QByteArray::fromStdString(value).toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number))
        return std::nullopt;
    return PointValue{point, number};
}

} // namespace host
