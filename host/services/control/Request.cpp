#include "Request.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <optional>

namespace host {

namespace {

const QString idKey = QStringLiteral("id");
const QString actionKey = QStringLiteral("do");
const QString valuesKey = QStringLiteral("values");
const QString pointKey = QStringLiteral("point");
const QString valueKey = QStringLiteral("value");
const QString rtusKey = QStringLiteral("rtus");
const QString channelsKey = QStringLiteral("channels");

// By RequestAction's order.
const char* const actionNames[] = {"write", "poll", "time-sync", "status", "watch", "trace"};
const std::string allActions = "it is one of write, poll, time-sync, status, watch, trace";

std::string quoted(const QString& text) {
    return '"' + text.left(40).toStdString() + '"'; // enough to know it again
}

// Reads the parts of one request; the first fault stays.
class RequestReader {
public:
    explicit RequestReader(const QJsonObject& requestObject) : object(requestObject) {}

    std::variant<Request, BadRequest> read() {
        Request request;
        request.id = readId();
        request.action = readAction();
        if (!fault.empty())
            return BadRequest{request.id, fault};
        return request;
    }

private:
    void fail(const std::string& what) {
        if (fault.empty())
            fault = what;
    }

    QJsonValue readId() {
        QJsonValue id = object.value(idKey);
        if (id.isUndefined() || id.isString() || id.isDouble())
            return id;
        fail("\"id\" is neither a text nor a number");
        return QJsonValue::Undefined;
    }

    RequestAction readAction() {
        const QJsonValue name = object.value(actionKey);
        if (!name.isString()) {
            fail("\"do\" is missing or no text; " + allActions);
            return {};
        }
        const std::string action = name.toString().toStdString();
        if (action == "write")
            return readWrite();
        if (action == "poll")
            return PollRequest{readRtus()};
        if (action == "time-sync")
            return TimeSyncRequest{readRtus()};
        if (action == "watch")
            return WatchRequest{readRtus()};
        if (action == "trace")
            return TraceRequest{readNames(channelsKey)};
        if (action == "status")
            allowKeys(object, {idKey, actionKey});
        else
            fail("unknown request " + quoted(name.toString()) + "; " + allActions);
        return StatusRequest{};
    }

    void allowKeys(const QJsonObject& checked, const QStringList& allowed) {
        const QStringList keys = checked.keys();
        const auto unknown = std::find_if(keys.begin(), keys.end(),
                                          [&](const QString& key) { return !allowed.contains(key); });
        if (unknown != keys.end())
            fail("unknown key " + quoted(*unknown) +
                 "; allowed here: " + allowed.join(QStringLiteral(", ")).toStdString());
    }

    WriteRequest readWrite() {
        allowKeys(object, {idKey, actionKey, valuesKey});
        const QJsonValue list = object.value(valuesKey);
        if (!list.isArray() || list.toArray().isEmpty())
            fail("\"values\" is missing or no list of {\"point\": NAME, \"value\": NUMBER}");
        const QJsonArray values = list.toArray();
        if (values.size() > mostWriteValues)
            fail("\"values\" holds more than " + std::to_string(mostWriteValues) +
                 " values; send them in several requests");
        WriteRequest write;
        for (const auto& value : values)
            if (fault.empty())
                write.values.push_back(readPointValue(value));
        return write;
    }

    PointValue readPointValue(const QJsonValue& element) {
        if (!element.isObject()) {
            fail("\"values\" holds something other than {\"point\": NAME, \"value\": NUMBER}");
            return {};
        }
        const QJsonObject one = element.toObject();
        allowKeys(one, {pointKey, valueKey});
        const QJsonValue point = one.value(pointKey);
        if (!point.isString())
            fail("\"point\" is missing or no text; it is RTU/POINT, such as pump-house/P1_START");
        const std::optional<double> value = readNumber(one.value(valueKey));
        if (!value)
            fail("\"value\" of " + quoted(point.toString()) +
                 " is missing or neither a number nor true or false");
        return {point.toString().toStdString(), value.value_or(0)};
    }

    static std::optional<double> readNumber(const QJsonValue& value) {
        if (value.isBool())
            return value.toBool() ? 1.0 : 0.0;
        if (value.isDouble() && std::isfinite(value.toDouble()))
            return value.toDouble();
        return std::nullopt;
    }

    RtuNames readRtus() { return readNames(rtusKey); }

    std::vector<std::string> readNames(const QString& key) {
        allowKeys(object, {idKey, actionKey, key});
        const QJsonValue list = object.value(key);
        if (list.isUndefined())
            return {};
        if (!list.isArray() || list.toArray().isEmpty() || list.toArray().size() > mostNames) {
            fail(quoted(key) + " is no list of 1 to " + std::to_string(mostNames) +
                 " names; leave it out to mean all");
            return {};
        }
        std::vector<std::string> names;
        for (const auto& element : list.toArray()) {
            if (!element.isString())
                fail(quoted(key) + " holds something other than texts");
            names.push_back(element.toString().toStdString());
        }
        return names;
    }

    const QJsonObject object;
    std::string fault;
};

QJsonArray toJson(const std::vector<std::string>& names) {
    QJsonArray array;
    for (const std::string& name : names)
        array.append(QString::fromStdString(name));
    return array;
}

void addParts(QJsonObject& object, const WriteRequest& write) {
    QJsonArray values;
    for (const PointValue& one : write.values)
        values.append(QJsonObject{{pointKey, QString::fromStdString(one.point)}, {valueKey, one.value}});
    object.insert(valuesKey, values);
}

void addParts(QJsonObject&, const StatusRequest&) {}

void addParts(QJsonObject& object, const TraceRequest& trace) {
    if (!trace.channels.empty())
        object.insert(channelsKey, toJson(trace.channels));
}

template <typename RequestForRtus>
void addParts(QJsonObject& object, const RequestForRtus& request) {
    if (!request.rtus.empty())
        object.insert(rtusKey, toJson(request.rtus));
}

} // namespace

std::variant<Request, BadRequest> parseRequest(const QByteArray& line) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    if (error.error != QJsonParseError::NoError)
        return BadRequest{QJsonValue::Undefined, "this is no JSON: " + error.errorString().toStdString() +
                                                     " at byte " + std::to_string(error.offset)};
    if (!document.isObject())
        return BadRequest{QJsonValue::Undefined, "a request is a JSON object, such as {\"do\":\"status\"}"};
    return RequestReader(document.object()).read();
}

QByteArray requestLine(const Request& request) {
    QJsonObject object;
    if (!request.id.isUndefined())
        object.insert(idKey, request.id);
    object.insert(actionKey, QString::fromLatin1(actionNames[request.action.index()]));
    std::visit([&object](const auto& action) { addParts(object, action); }, request.action);
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace host
