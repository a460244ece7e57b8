#include "SparkplugSession.h"

#include "site/PointValue.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <optional>

namespace host {

namespace {

const char* const rebirthName = "Node Control/Rebirth";
const char* const birthDeathName = "bdSeq";

SparkplugMetric birthDeathMetric(std::uint8_t sequence, std::uint64_t nowMs) {
    SparkplugMetric metric;
    metric.name = birthDeathName;
    metric.timeMs = nowMs;
    metric.type = SparkplugType::Int64;
    metric.value = std::int64_t{sequence};
    return metric;
}

// The whole numbers of elements are words of 32 bits with a sign.
SparkplugType typeOf(const Point& point) {
    if (point.kind == PointKind::Status)
        return SparkplugType::Boolean;
    const bool isWhole = !point.isFloat && !hasRaw(point);
    return isWhole ? SparkplugType::Int32 : SparkplugType::Double;
}

std::optional<SparkplugValue> sparkplugValueOf(const Point& point, double raw) {
    if (!isNumber(point, raw))
        return std::nullopt;
    switch (typeOf(point)) {
    case SparkplugType::Boolean:
        return raw != 0;
    case SparkplugType::Int32:
        return static_cast<std::int64_t>(raw);
    default:
        return valueOf(point, raw);
    }
}

SparkplugQuality qualityOf(PointQuality quality) {
    switch (quality) {
    case PointQuality::Good:
        return SparkplugQuality::Good;
    case PointQuality::NeverRead:
        return SparkplugQuality::Stale;
    default:
        return SparkplugQuality::Bad;
    }
}

// What a primary host of version 3.0 of the standard says of itself.
struct HostWord {
    bool isOnline = false;
    std::uint64_t timeMs = 0; // when it came online, in both of its words
};

std::optional<HostWord> readHostWord(const std::string& json) {
    const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(json)).object();
    const QJsonValue online = object.value(QStringLiteral("online"));
    const QJsonValue time = object.value(QStringLiteral("timestamp"));
    constexpr double beyondTime = 9e15; // more milliseconds than a double counts one by one
    if (!online.isBool() || !time.isDouble() || !(time.toDouble() >= 0) || time.toDouble() > beyondTime)
        return std::nullopt;
    return HostWord{online.toBool(), static_cast<std::uint64_t>(time.toDouble())};
}

} // namespace

SparkplugSession::SparkplugSession(Settings sessionSettings, const PointTable& pointTable,
                                   StateOf stateOfPoint, std::uint8_t lastBirthDeathSequence)
    : settings(std::move(sessionSettings)), points(pointTable), stateOf(std::move(stateOfPoint)),
      birthDeath(lastBirthDeathSequence) {
    for (std::string& name : sparkplugDevices(points))
        devices.push_back({std::move(name)});
}

const std::string& SparkplugSession::deviceOf(PointIndex index) const {
    return devices[points.placeOf(points.blockOf(index))].name;
}

SparkplugMessage SparkplugSession::beginConnection(std::uint64_t nowMs) {
    ++birthDeath; // 0 follows 255
    return death(nowMs);
}

SparkplugMessage SparkplugSession::death(std::uint64_t nowMs) const {
    return {settings.names.nodeTopic("NDEATH"),
            encodeSparkplug({nowMs, std::nullopt, {birthDeathMetric(birthDeath, nowMs)}}), 1};
}

std::vector<std::string> SparkplugSession::subscriptions() const {
    std::vector<std::string> topics{settings.names.nodeTopic("NCMD"),
                                    settings.names.deviceTopic("DCMD", "#")};
    if (!settings.primaryHost.empty())
        topics.push_back(sparkplugStateTopic(settings.primaryHost));
    return topics;
}

SparkplugMessages SparkplugSession::connected(std::uint64_t nowMs) {
    state = State::Waiting;
    return settings.primaryHost.empty() ? births(nowMs) : SparkplugMessages();
}

SparkplugMessages SparkplugSession::hostSaid(const std::string& json, std::uint64_t nowMs) {
    const std::optional<HostWord> word = readHostWord(json);
    if (!word || word->timeMs < hostOnlineSince || state == State::Away)
        return {};
    if (word->isOnline) {
        hostOnlineSince = word->timeMs;
        return state == State::Waiting ? births(nowMs) : SparkplugMessages();
    }
    if (state != State::Born)
        return {};
    state = State::Waiting;
    return {death(nowMs)};
}

SparkplugMessages SparkplugSession::rebirth(std::uint64_t nowMs) {
    if (state != State::Born)
        return {};
    const bool wasCaughtUp = isCaughtUp;
    SparkplugMessages messages = births(nowMs);
    if (wasCaughtUp)
        for (SparkplugMessage& death : caughtUp(nowMs))
            messages.push_back(std::move(death));
    return messages;
}

SparkplugMessages SparkplugSession::births(std::uint64_t nowMs) {
    state = State::Born;
    isCaughtUp = false;
    SparkplugMessages messages{nodeBirth(nowMs)};
    for (std::size_t place = 0; place < devices.size(); ++place)
        messages.push_back(deviceBirth(place, nowMs));
    return messages;
}

SparkplugMessage SparkplugSession::nodeBirth(std::uint64_t nowMs) {
    SparkplugMetric control;
    control.name = rebirthName;
    control.timeMs = nowMs;
    control.type = SparkplugType::Boolean;
    control.value = false;
    sequence = 1;
    return {settings.names.nodeTopic("NBIRTH"),
            encodeSparkplug({nowMs, std::uint8_t{0}, {birthDeathMetric(birthDeath, nowMs), control}})};
}

SparkplugMessage SparkplugSession::deviceBirth(std::size_t place, std::uint64_t nowMs) {
    const PointTable::Block& block = points.blocks()[place];
    SparkplugPayload payload{nowMs, {}, {}};
    payload.metrics.reserve(block.count);
    for (PointIndex index = block.first; index < block.end(); ++index) {
        const Point& point = *points.at(index).point;
        SparkplugMetric metric = metricOf(index, stateOf(index), nowMs);
        metric.name = point.name;
        metric.unit = unitOf(point);
        payload.metrics.push_back(std::move(metric));
    }
    devices[place].isBorn = true;
    return deviceMessage("DBIRTH", place, std::move(payload));
}

SparkplugMessage SparkplugSession::deviceDeath(std::size_t place, std::uint64_t nowMs) {
    devices[place].isBorn = false;
    return deviceMessage("DDEATH", place, {nowMs, {}, {}});
}

SparkplugMessage SparkplugSession::deviceMessage(const char* kind, std::size_t place,
                                                 SparkplugPayload payload) {
    payload.sequence = sequence++; // 0 follows 255
    return {settings.names.deviceTopic(kind, devices[place].name), encodeSparkplug(payload)};
}

SparkplugMetric SparkplugSession::metricOf(PointIndex index, const PointState& pointState,
                                           std::uint64_t nowMs) const {
    const Point& point = *points.at(index).point;
    const qint64 time =
        pointState.quality == PointQuality::Good ? pointState.valueTimeMs : pointState.changeTimeMs;
    SparkplugMetric metric;
    metric.alias = index;
    metric.timeMs = time > 0 ? static_cast<std::uint64_t>(time) : nowMs;
    metric.type = typeOf(point);
    if (pointState.quality == PointQuality::Good)
        metric.value = sparkplugValueOf(point, pointState.value);
    metric.quality = qualityOf(pointState.quality);
    return metric;
}

SparkplugMessages SparkplugSession::data(const std::vector<PointChange>& changes, bool isHistorical,
                                         std::uint64_t nowMs) {
    SparkplugMessages messages;
    if (state != State::Born)
        return messages;
    for (std::size_t next = 0; next < changes.size();) {
        const PointTable::Block& block = points.blockOf(changes[next].index);
        const std::size_t place = points.placeOf(block);
        SparkplugPayload payload{nowMs, {}, {}};
        bool bringsGood = false;
        for (;
             next < changes.size() && changes[next].index >= block.first && changes[next].index < block.end();
             ++next) {
            payload.metrics.push_back(metricOf(changes[next].index, changes[next].state, nowMs));
            payload.metrics.back().isHistorical = isHistorical;
            bringsGood = bringsGood || changes[next].state.quality == PointQuality::Good;
        }
        if (bringsGood && !isHistorical)
            devices[place].isAlive = true;
        if (devices[place].isBorn)
            messages.push_back(deviceMessage("DDATA", place, std::move(payload)));
        else if (bringsGood)
            messages.push_back(deviceBirth(place, nowMs)); // with the values of now, these among them
    }
    return messages;
}

SparkplugMessages SparkplugSession::deviceDied(std::size_t place, std::uint64_t nowMs) {
    devices[place].isAlive = false;
    if (state != State::Born || !isCaughtUp || !devices[place].isBorn)
        return {};
    return {deviceDeath(place, nowMs)};
}

SparkplugMessages SparkplugSession::deviceReturned(std::size_t place, std::uint64_t nowMs) {
    devices[place].isAlive = true;
    if (state != State::Born || devices[place].isBorn)
        return {};
    return {deviceBirth(place, nowMs)};
}

SparkplugMessages SparkplugSession::caughtUp(std::uint64_t nowMs) {
    SparkplugMessages messages;
    if (state != State::Born)
        return messages;
    isCaughtUp = true;
    for (std::size_t place = 0; place < devices.size(); ++place)
        if (devices[place].isBorn && !devices[place].isAlive)
            messages.push_back(deviceDeath(place, nowMs));
    return messages;
}

SparkplugOrder SparkplugSession::orderOf(const std::string& topic, const std::string& payload) const {
    SparkplugOrder order;
    const std::optional<SparkplugPayload> read = decodeSparkplug(payload);
    if (!read) {
        order.faults.push_back("the message on " + topic + " is no payload of Sparkplug B");
        return order;
    }
    if (topic == settings.names.nodeTopic("NCMD")) {
        for (const SparkplugMetric& metric : read->metrics)
            order.isRebirth =
                order.isRebirth || (metric.name == rebirthName && metric.value == SparkplugValue(true));
        return order;
    }
    const auto device = std::find_if(devices.begin(), devices.end(), [&](const Device& one) {
        return topic == settings.names.deviceTopic("DCMD", one.name);
    });
    if (device == devices.end()) {
        order.faults.push_back("the topic " + topic + " is of no device");
        return order;
    }
    for (const SparkplugMetric& metric : read->metrics)
        readOrder(metric, static_cast<std::size_t>(device - devices.begin()), order);
    return order;
}

void SparkplugSession::readOrder(const SparkplugMetric& metric, std::size_t place,
                                 SparkplugOrder& into) const {
    const PointTable::Block& block = points.blocks()[place];
    std::optional<PointIndex> found;
    for (PointIndex index = block.first; index < block.end() && !found; ++index)
        if (metric.name.empty() ? metric.alias == index : metric.name == points.at(index).point->name)
            found = index;
    const std::string name =
        metric.name.empty() ? "alias " + std::to_string(metric.alias.value_or(0)) : metric.name;
    if (!found)
        into.faults.push_back(devices[place].name + " has no metric " + name);
    else if (!metric.value)
        into.faults.push_back(devices[place].name + "/" + name + " is to have no value");
    else
        into.values.emplace_back(*found, *metric.value);
}

} // namespace host
