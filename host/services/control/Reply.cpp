#include "Reply.h"

#include "commands/CommandText.h"
#include "runtime/ChannelText.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace host {

namespace {

using Halvex::DriverErrorResult;

const char* toText(ReplyFault code) {
    switch (code) {
    case ReplyFault::Malformed:
        return "malformed";
    case ReplyFault::Unknown:
        return "unknown";
    case ReplyFault::Busy:
        return "busy";
    case ReplyFault::Permission:
        return "permission";
    case ReplyFault::Ending:
        break;
    }
    return "ending";
}

double number(quint64 count) {
    return static_cast<double>(count); // what JSON numbers are
}

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

QJsonObject toJson(const RtuOutcome& outcome) {
    const Rtu& rtu = *outcome.figures.rtu;
    const RtuStatus& status = outcome.figures.status;
    return {{QStringLiteral("id"), rtu.id},
            {QStringLiteral("name"), text(rtu.name)},
            {QStringLiteral("station"), static_cast<int>(rtu.station)},
            {QStringLiteral("enabled"), rtu.enabled},
            {QStringLiteral("connected"), status.connected},
            {QStringLiteral("refused"), outcome.figures.wasRefused},
            {QStringLiteral("requests"), number(status.requests)},
            {QStringLiteral("attempts"), number(outcome.figures.attempts)},
            {QStringLiteral("answers"), number(status.answers)},
            {QStringLiteral("time_outs"), number(status.timeOuts)},
            {QStringLiteral("errors"), number(status.errors)},
            {QStringLiteral("last_round_trip_ms"), static_cast<double>(status.lastRoundTrip.count()) / 1000},
            {QStringLiteral("slowest_round_trip_ms"),
             static_cast<double>(status.slowestRoundTrip.count()) / 1000},
            {QStringLiteral("good_points"), number(outcome.goodPoints)},
            {QStringLiteral("bad_points"), number(outcome.badPoints)},
            {QStringLiteral("refused_points"), number(outcome.refusedPoints)},
            {QStringLiteral("never_read_points"), number(outcome.neverReadPoints)}};
}

QJsonObject toJson(const ChannelFigures& figures, const QJsonArray& rtus) {
    const Channel& channel = *figures.channel;
    const ChannelStatus& status = figures.status;
    return {{QStringLiteral("id"), channel.id},
            {QStringLiteral("name"), text(channel.name)},
            {QStringLiteral("type"), QString::fromLatin1(toText(channel.type))},
            {QStringLiteral("end"), text(endInUseText(figures))},
            {QStringLiteral("connected"), status.connected},
            {QStringLiteral("failed_opens"), number(status.failedOpens)},
            {QStringLiteral("channel_errors"), number(status.channelErrors)},
            {QStringLiteral("link_changes"), number(status.linkChanges)},
            {QStringLiteral("scan_overruns"), number(status.scanOverruns)},
            {QStringLiteral("failed_ms"), static_cast<double>(status.failedMs)},
            {QStringLiteral("rtus"), rtus}};
}

// "switched off" is "switched_off" here. A service without figures tells nothing.
QJsonObject toJson(const std::vector<ServiceFigures>& services) {
    QJsonObject all;
    for (const ServiceFigures& service : services) {
        QJsonObject own;
        for (const ServiceFigure& figure : service.figures)
            own.insert(text(figure.name).replace(QLatin1Char(' '), QLatin1Char('_')), number(figure.value));
        if (!own.isEmpty())
            all.insert(text(service.name), own);
    }
    return all;
}

} // namespace

bool isSuccess(const CommandOutcome& outcome) {
    return outcome.result == DriverErrorResult::Success;
}

bool isAllDone(const std::vector<CommandOutcome>& outcomes) {
    const bool isAnythingDone = outcomes.empty() || std::any_of(outcomes.begin(), outcomes.end(), isSuccess);
    return isAnythingDone && std::all_of(outcomes.begin(), outcomes.end(), [](const CommandOutcome& one) {
               return one.isLeftOut || isSuccess(one);
           });
}

const char* resultText(const CommandOutcome& outcome) {
    if (outcome.isLeftOut)
        return "left out";
    if (!outcome.result || (outcome.isRefusedByController && !isSuccess(outcome)))
        return "refused";
    return resultWord(*outcome.result);
}

QJsonObject toJson(const CommandOutcome& outcome) {
    QJsonObject object{{QStringLiteral("result"), QString::fromLatin1(resultText(outcome))}};
    object.insert(QStringLiteral("number"),
                  outcome.result ? QJsonValue(static_cast<int>(*outcome.result)) : QJsonValue::Null);
    if (!outcome.why.empty())
        object.insert(QStringLiteral("why"), text(outcome.why));
    return object;
}

QByteArray errorReply(const QJsonValue& id, ReplyFault code, const std::string& what) {
    return reply(
        id, false,
        {{QStringLiteral("code"), QString::fromLatin1(toText(code))}, {QStringLiteral("error"), text(what)}});
}

QByteArray reply(const QJsonValue& id, bool ok, QJsonObject parts) {
    if (!id.isUndefined())
        parts.insert(QStringLiteral("id"), id);
    parts.insert(QStringLiteral("ok"), ok);
    return QJsonDocument(parts).toJson(QJsonDocument::Compact);
}

QJsonObject statusParts(const HostFigures& figures) {
    QJsonArray list;
    for (const ChannelFigures& one : figures.channels) {
        QJsonArray own;
        for (const RtuOutcome& outcome : figures.rtus)
            if (outcome.figures.channel == one.channel)
                own.append(toJson(outcome));
        list.append(toJson(one, own));
    }
    return {{QStringLiteral("channels"), list}, {QStringLiteral("services"), toJson(figures.services)}};
}

} // namespace host
