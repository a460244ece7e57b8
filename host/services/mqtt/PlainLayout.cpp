#include "PlainLayout.h"

#include "SetMessage.h"
#include "site/PointText.h"
#include "site/PointValue.h"
#include "values/ChangeText.h"
#include "values/ValueText.h"

#include <utility>

namespace host {

namespace {

const char* const json = "application/json";

const char* toText(RtuCondition condition) {
    switch (condition) {
    case RtuCondition::Online:
        return "online";
    case RtuCondition::Offline:
        return "offline";
    case RtuCondition::Disabled:
        return "disabled";
    case RtuCondition::Unknown:
        break;
    }
    return "unknown";
}

} // namespace

PlainLayout::PlainLayout(Settings layoutSettings, const PointTable& pointTable)
    : settings(std::move(layoutSettings)), table(pointTable),
      siteTopics(settings.prefix, settings.site, pointTable) {}

MqttMessage PlainLayout::state(const std::string& topic, const std::string& word,
                               const std::string& when) const {
    const std::string moment = when.empty() ? "" : ",\"time\":\"" + when + "\"";
    return {topic + "/$state", "{\"state\":\"" + word + "\"" + moment + "}", settings.qos, true, json};
}

// The broker publishes it at some later time, which is not known yet.
MqttMessage PlainLayout::will(qint64) {
    return state(siteTopics.root(), "offline", {});
}

std::vector<Subscription> PlainLayout::subscriptions() const {
    if (!settings.takesCommands)
        return {};
    return {{siteTopics.root() + "/+/+/+/set"}};
}

std::vector<MqttMessage> PlainLayout::birth(qint64 nowMs) {
    return {state(siteTopics.root(), "online", utcTimeText(nowMs))};
}

// Nothing is known of the lines any more.
std::vector<MqttMessage> PlainLayout::death(qint64 nowMs) {
    const std::string when = utcTimeText(nowMs);
    std::vector<MqttMessage> messages{state(siteTopics.root(), "offline", when)};
    const Channel* last = nullptr;
    for (const PointTable::Block& block : table.blocks()) {
        if (block.channel != last)
            messages.push_back(state(siteTopics.ofLine(*block.channel), "unknown", when));
        last = block.channel;
        messages.push_back(state(siteTopics.ofRtu(block), "unknown", when));
    }
    return messages;
}

void PlainLayout::tellLine(const Channel& channel, bool isConnected, qint64 nowMs,
                           std::vector<MqttMessage>& into) {
    into.push_back(state(siteTopics.ofLine(channel), isConnected ? "online" : "offline", utcTimeText(nowMs)));
}

void PlainLayout::tellRtu(const PointTable::Block& block, RtuCondition condition, qint64 nowMs,
                          std::vector<MqttMessage>& into) {
    into.push_back(state(siteTopics.ofRtu(block), toText(condition), utcTimeText(nowMs)));
}

void PlainLayout::appendValue(std::string& text, const ToldChange& change) {
    const Point& point = *table.at(change.index).point;
    const PointState& state = change.state;
    text += "\"value\":";
    if (state.quality == PointQuality::Good && isNumber(point, state.value))
        host::appendValue(text, point, state.value);
    else
        text += "null";
    if (const std::string& unit = unitOf(point); !unit.empty())
        text += ",\"unit\":" + jsonText(unit);
    text += ",\"quality\":\"";
    text += host::toText(state.quality);
    text += '"';
    if (state.changeTimeMs != 0) {
        text += ",\"time\":\"";
        text += time.of(state.changeTimeMs);
        text += '"';
    }
}

std::size_t PlainLayout::tellChanges(const ToldChange* changes, std::size_t, MqttMessage& into) {
    into = {siteTopics.ofPoint(changes->index), "{", settings.qos, true, json};
    appendValue(into.payload, *changes);
    into.payload += '}';
    return 1;
}

MessageMeaning PlainLayout::read(const MqttMessage& message) {
    MessageMeaning meaning;
    if (settings.takesCommands)
        if (std::optional<CommandRequest> request = readSetMessage(message, siteTopics, table))
            meaning.commands.push_back(std::move(*request));
    return meaning;
}

std::optional<MqttMessage> PlainLayout::result(const CommandRequest& request, const CommandResult& result) {
    return setResult(request, result);
}

} // namespace host
