#include "ReplyText.h"

#include "services/console/TableLayout.h"
#include "site/CountText.h"
#include "values/ValueText.h"

#include <ControlCharacters.h>
#include <HalvexDriverComponent/Halvex.h>

#include <QDateTime>
#include <QJsonArray>

#include <algorithm>

namespace host {

namespace {

using Row = std::vector<std::string>;

// For a terminal: a reply may come from whoever has the socket.
std::string text(const QString& received) {
    return text::printable(received.toStdString());
}

std::string text(const QJsonObject& object, const char* key) {
    return text(object.value(QLatin1String(key)).toString());
}

std::string numberText(const QJsonValue& value) {
    return QString::number(value.toDouble(), 'g', 15).toStdString();
}

std::string numberText(const QJsonObject& object, const char* key) {
    return numberText(object.value(QLatin1String(key)));
}

bool flag(const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toBool();
}

bool isGood(const QJsonObject& result) {
    return result.value(QStringLiteral("number")).toInt(-1) == 0;
}

bool isLeftOut(const QJsonObject& result) {
    return text(result, "result") == "left out";
}

bool isRefused(const QJsonObject& result) {
    using Halvex::DriverErrorResult;
    if (text(result, "result") == "refused" || isLeftOut(result))
        return true;
    const auto number = static_cast<DriverErrorResult>(result.value(QStringLiteral("number")).toInt());
    return number == DriverErrorResult::NotSupported || number == DriverErrorResult::RtuNotFound ||
           number == DriverErrorResult::PointNotFound || number == DriverErrorResult::UnsupportedAddress;
}

// "21.5 m"
std::string valueText(const QJsonObject& object) {
    const std::string unit = text(object, "unit");
    return numberText(object, "value") + (unit.empty() ? "" : " " + unit);
}

std::string resultLine(const QJsonObject& result) {
    std::string line = text(result, "point") + text(result, "rtu");
    if (result.contains(QStringLiteral("value")))
        line += " = " + valueText(result);
    if (result.contains(QStringLiteral("raw")) && numberText(result, "raw") != numberText(result, "value"))
        line += " (raw " + numberText(result, "raw") + ")";
    line += "  " + text(result, "result");
    const QJsonValue number = result.value(QStringLiteral("number"));
    if (!number.isNull() && !isGood(result))
        line += " (" + std::to_string(number.toInt()) + ")";
    const std::string why = text(result, "why");
    return line + (why.empty() ? "" : ": " + why);
}

std::string channelHeading(const QJsonObject& channel) {
    std::string heading = text(channel, "name") + "  " + text(channel, "type") + "  " + text(channel, "end") +
                          (flag(channel, "connected") ? "  connected" : "  NOT CONNECTED");
    const std::pair<const char*, const char*> troubles[] = {{"failed_opens", "failed open"},
                                                            {"channel_errors", "channel error"},
                                                            {"link_changes", "link change"},
                                                            {"scan_overruns", "scan overrun"}};
    for (const auto& [key, name] : troubles)
        if (const double count = channel.value(QLatin1String(key)).toDouble(); count > 0)
            heading += "  " + countText(static_cast<std::uint64_t>(count), name);
    return heading;
}

std::string stateText(const QJsonObject& rtu) {
    if (!flag(rtu, "enabled"))
        return "disabled";
    if (flag(rtu, "refused"))
        return "refuses";
    return flag(rtu, "connected") ? "connected" : "NOT CONNECTED";
}

Row rowFor(const QJsonObject& rtu) {
    const auto roundTrip = [&rtu](const char* key) {
        return QString::number(rtu.value(QLatin1String(key)).toDouble(), 'f', 2).toStdString() + " ms";
    };
    return {text(rtu, "name"),
            numberText(rtu, "station"),
            stateText(rtu),
            numberText(rtu, "requests"),
            numberText(rtu, "attempts"),
            numberText(rtu, "answers"),
            numberText(rtu, "time_outs"),
            numberText(rtu, "errors"),
            roundTrip("last_round_trip_ms"),
            roundTrip("slowest_round_trip_ms"),
            numberText(rtu, "good_points"),
            numberText(rtu, "bad_points"),
            numberText(rtu, "refused_points"),
            numberText(rtu, "never_read_points")};
}

std::size_t countCharacters(const std::string& utf8) {
    return static_cast<std::size_t>(QString::fromStdString(utf8).size());
}

std::string tableText(const std::vector<Row>& rows) {
    constexpr std::size_t textColumns = 1; // the RTU's name; the rest stands to the right
    constexpr std::size_t stateColumn = 2;
    std::vector<std::size_t> widths(rows[0].size(), 0);
    for (const Row& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], countCharacters(row[i]));
    std::string table;
    for (const Row& row : rows) {
        table += ' ';
        for (std::size_t i = 0; i < row.size(); ++i)
            table += (i == 0 ? "" : "  ") + fitText(row[i], widths[i], i >= textColumns && i != stateColumn);
        table += '\n';
    }
    return table;
}

// "capture  frames 12  lost 0", a line for each.
std::string servicesText(const QJsonObject& services) {
    std::string lines;
    for (auto service = services.begin(); service != services.end(); ++service) {
        const QJsonObject figures = service.value().toObject();
        lines += text(service.key());
        for (auto figure = figures.begin(); figure != figures.end(); ++figure) {
            const QString name = figure.key().replace(QLatin1Char('_'), QLatin1Char(' '));
            lines += "  " + text(name) + " " + numberText(figure.value());
        }
        lines += '\n';
    }
    return lines;
}

} // namespace

std::string resultsText(const QJsonObject& reply) {
    std::string lines;
    for (const auto& result : reply.value(QStringLiteral("results")).toArray())
        lines += resultLine(result.toObject()) + '\n';
    return lines;
}

std::string statusText(const QJsonObject& reply) {
    std::string tables;
    for (const auto& element : reply.value(QStringLiteral("channels")).toArray()) {
        const QJsonObject channel = element.toObject();
        std::vector<Row> rows{{"RTU", "station", "state", "requests", "attempts", "answers", "time-outs",
                               "errors", "last", "slowest", "good", "bad", "refused", "never read"}};
        for (const auto& rtu : channel.value(QStringLiteral("rtus")).toArray())
            rows.push_back(rowFor(rtu.toObject()));
        tables += channelHeading(channel) + '\n' + tableText(rows);
    }
    return tables + servicesText(reply.value(QStringLiteral("services")).toObject());
}

std::string changeText(const QJsonObject& change) {
    const QDateTime time =
        QDateTime::fromString(change.value(QStringLiteral("time")).toString(), Qt::ISODateWithMs);
    std::string line = localTimeText(time.toMSecsSinceEpoch()) + "  " + text(change, "rtu") + '/' +
                       text(change, "name") + " (" + text(change, "address") + ")";
    if (!change.value(QStringLiteral("value")).isNull())
        line += " = " + valueText(change);
    return line + "  " + text(change, "quality");
}

ExitStatus judgeReply(const QJsonObject& reply) {
    if (!reply.contains(QStringLiteral("results"))) {
        const std::string code = text(reply, "code");
        return flag(reply, "ok")                        ? ExitStatus::Good
               : code == "busy" || code == "permission" ? ExitStatus::Refused
               : code == "ending"                       ? ExitStatus::CommunicationFailed
                                                        : ExitStatus::Configuration;
    }
    const QJsonArray results = reply.value(QStringLiteral("results")).toArray();
    const auto good = std::count_if(results.begin(), results.end(),
                                    [](const auto& result) { return isGood(result.toObject()); });
    const auto leftOut = std::count_if(results.begin(), results.end(),
                                       [](const auto& result) { return isLeftOut(result.toObject()); });
    if (results.isEmpty() || (good > 0 && good + leftOut == results.size()))
        return ExitStatus::Good;
    if (good > 0)
        return ExitStatus::SomeElements;
    const bool allRefused = std::all_of(results.begin(), results.end(),
                                        [](const auto& result) { return isRefused(result.toObject()); });
    return allRefused ? ExitStatus::Refused : ExitStatus::CommunicationFailed;
}

} // namespace host
