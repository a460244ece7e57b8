#include "SetMessage.h"

#include "PointCommand.h"
#include "values/ChangeText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace host {

namespace {

const std::string setLevel = "/set";
const std::string resultLevel = "/set/result";

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// What a payload asks for.
struct Wanted {
    std::optional<double> value;
    std::string id;
    std::string fault;
};

const char* const payloadRemedy =
    "publish a number, on, off, true or false, or {\"value\": NUMBER, \"id\": ID}";

std::optional<double> wordValue(const std::string& word) {
    if (word == "on" || word == "true")
        return 1;
    if (word == "off" || word == "false")
        return 0;
    return std::nullopt;
}

std::optional<double> jsonNumber(const QJsonValue& value) {
    if (value.isDouble() && std::isfinite(value.toDouble()))
        return value.toDouble();
    if (value.isBool())
        return value.toBool() ? 1 : 0;
    if (value.isString())
        return wordValue(value.toString().toStdString());
    return std::nullopt;
}

Wanted readObject(const QJsonObject& object) {
    Wanted wanted;
    const QJsonValue id = object.value(QStringLiteral("id"));
    if (id.isString() || id.isDouble()) {
        const QByteArray list = QJsonDocument(QJsonArray{id}).toJson(QJsonDocument::Compact);
        wanted.id = list.mid(1, list.size() - 2).toStdString();
    } else if (!id.isUndefined()) {
        wanted.fault = "the id is neither a text nor a number";
    }
    wanted.value = jsonNumber(object.value(QStringLiteral("value")));
    if (!wanted.value)
        wanted.fault = "there is no value in the object";
    for (const QString& key : object.keys())
        if (key != QLatin1String("id") && key != QLatin1String("value"))
            wanted.fault = "the key \"" + key.toStdString() + "\" is not known";
    return wanted;
}

Wanted readPayload(const std::string& payload) {
    if (payload.size() > longestSetPayload)
        return {{}, {}, "the payload is longer than " + std::to_string(longestSetPayload) + " bytes"};
    const std::size_t first = payload.find_first_not_of(" \t\r\n");
    const std::size_t end = payload.find_last_not_of(" \t\r\n");
    const std::string text = first == std::string::npos ? "" : payload.substr(first, end - first + 1);
    if (const std::optional<double> value = wordValue(text))
        return {value, {}, {}};
    // A bare number is no document of its own for this parser.
    const std::string document = !text.empty() && text.front() == '{' ? text : "[" + text + "]";
    const QJsonDocument json = QJsonDocument::fromJson(QByteArray::fromStdString(document));
    if (json.isObject())
        return readObject(json.object());
    const bool isNumber = json.array().size() == 1 && json.array().first().isDouble();
    const std::optional<double> value = isNumber ? jsonNumber(json.array().first()) : std::optional<double>();
    return {value, {}, value ? std::string() : std::string("the payload is no value")};
}

// Where an answer may go: a topic without a wildcard that is not the system's. Below the site's own topics it
// would pass for a value or a command.
bool isPlaceForReply(const std::string& topic, const Topics& topics) {
    return !topic.empty() && topic.size() <= longestResponseTopic && topic.front() != '$' &&
           topic.find_first_of(std::string("+#\0", 3)) == std::string::npos &&
           topic.compare(0, topics.root().size() + 1, topics.root() + "/") != 0;
}

ReplyPlace placeFor(const MqttMessage& message, const Topics& topics) {
    ReplyPlace place;
    place.topic = message.topic + "/result";
    if (isPlaceForReply(message.responseTopic, topics))
        place.topic = message.responseTopic;
    if (message.correlation.size() <= longestCorrelation)
        place.correlation = message.correlation;
    return place;
}

} // namespace

std::optional<CommandRequest> readSetMessage(const MqttMessage& message, const Topics& topics,
                                             const PointTable& points) {
    // An empty retained message is how one is removed from the broker.
    if (!endsWith(message.topic, setLevel) || (message.isRetained && message.payload.empty()))
        return std::nullopt;
    const std::string pointTopic = message.topic.substr(0, message.topic.size() - setLevel.size());
    CommandRequest request;
    request.point = pointTopic;
    request.reply = placeFor(message, topics);
    const Wanted wanted = readPayload(message.payload);
    request.reply.id = wanted.id;
    if (!wanted.id.empty() || !request.reply.correlation.empty())
        request.key =
            message.topic + '\n' + request.reply.topic + '\n' + wanted.id + '\n' + request.reply.correlation;
    const std::optional<PointIndex> index = topics.findPoint(pointTopic);
    if (!index)
        request.refusal = "there is no point of this name";
    else if (message.isRetained)
        request.refusal = "the command is retained and would come again at each connection; publish it "
                          "without retain, and remove this one from the broker with an empty one";
    else if (!wanted.value || !wanted.fault.empty())
        request.refusal = wanted.fault + "; " + payloadRemedy;
    else
        addCommand(request, points.at(*index), *wanted.value);
    return request;
}

std::optional<MqttMessage> setResult(const CommandRequest& request, const CommandResult& result) {
    if (request.reply.topic.empty())
        return std::nullopt;
    std::string payload = "{";
    if (!request.reply.id.empty())
        payload += "\"id\":" + request.reply.id + ",";
    payload += std::string("\"ok\":") + (result.isDone ? "true" : "false");
    payload += ",\"result\":" + jsonText(result.word);
    if (!result.why.empty())
        payload += ",\"why\":" + jsonText(result.why);
    payload += "}";
    MqttMessage message;
    message.topic = request.reply.topic;
    message.payload = payload;
    message.contentType = "application/json";
    message.correlation = request.reply.correlation;
    return message;
}

} // namespace host
