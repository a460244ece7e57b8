#include "SparkplugLayout.h"

#include "PointCommand.h"

#include <QDateTime>

#include <algorithm>
#include <utility>

namespace host {

namespace {

std::uint64_t unsignedTime(qint64 timeMs) {
    return static_cast<std::uint64_t>(std::max<qint64>(timeMs, 0));
}

MqttMessage mqttMessage(SparkplugMessage message) {
    return {std::move(message.topic), std::move(message.payload), message.qos};
}

std::vector<MqttMessage> mqttMessages(SparkplugMessages messages) {
    std::vector<MqttMessage> all;
    all.reserve(messages.size());
    for (SparkplugMessage& one : messages)
        all.push_back(mqttMessage(std::move(one)));
    return all;
}

void append(SparkplugMessages messages, std::vector<MqttMessage>& into) {
    for (SparkplugMessage& one : messages)
        into.push_back(mqttMessage(std::move(one)));
}

std::optional<double> numberOf(const SparkplugValue& value) {
    if (const bool* const flag = std::get_if<bool>(&value))
        return *flag ? 1 : 0;
    if (const std::int64_t* const whole = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*whole);
    if (const double* const number = std::get_if<double>(&value))
        return *number;
    return std::nullopt;
}

} // namespace

SparkplugLayout::SparkplugLayout(Settings layoutSettings, const ValueStore& valueStore)
    : settings(std::move(layoutSettings)), store(valueStore),
      session(
          settings.session, store.points(), [this](PointIndex index) { return store.state(index); },
          settings.lastBirthDeathSequence) {}

MqttMessage SparkplugLayout::will(qint64 nowMs) {
    session.disconnected();
    SparkplugMessage will = session.beginConnection(unsignedTime(nowMs));
    settings.keepBirthDeathSequence(session.birthDeathSequence());
    return mqttMessage(std::move(will));
}

std::vector<Subscription> SparkplugLayout::subscriptions() const {
    const std::string& primaryHost = settings.session.primaryHost;
    std::vector<Subscription> all;
    for (const std::string& topic : session.subscriptions())
        all.push_back({topic, !primaryHost.empty() && topic == sparkplugStateTopic(primaryHost)});
    return all;
}

std::vector<MqttMessage> SparkplugLayout::birth(qint64 nowMs) {
    bornAtMs = nowMs;
    if (!pendingBirth.empty())
        return std::exchange(pendingBirth, {});
    return mqttMessages(session.connected(unsignedTime(nowMs)));
}

std::vector<MqttMessage> SparkplugLayout::death(qint64 nowMs) {
    return {mqttMessage(session.death(unsignedTime(nowMs)))};
}

void SparkplugLayout::tellRtu(const PointTable::Block& block, RtuCondition condition, qint64 nowMs,
                              std::vector<MqttMessage>& into) {
    const std::size_t place = store.points().placeOf(block);
    append(condition == RtuCondition::Online ? session.deviceReturned(place, unsignedTime(nowMs))
                                             : session.deviceDied(place, unsignedTime(nowMs)),
           into);
}

void SparkplugLayout::tellCaughtUp(qint64 nowMs, std::vector<MqttMessage>& into) {
    append(session.caughtUp(unsignedTime(nowMs)), into);
}

// What happened while the primary host was away is historical, although the broker was there.
std::size_t SparkplugLayout::tellChanges(const ToldChange* changes, std::size_t count, MqttMessage& into) {
    const PointTable::Block& block = store.points().blockOf(changes->index);
    const auto isHistorical = [this](const ToldChange& one) {
        return one.isHistorical || one.state.changeTimeMs < bornAtMs;
    };
    std::vector<PointChange> run;
    for (std::size_t i = 0; i < std::min(count, mostMetrics); ++i) {
        const ToldChange& one = changes[i];
        if (one.index < block.first || one.index >= block.end() ||
            isHistorical(one) != isHistorical(*changes))
            break;
        run.push_back({one.index, one.state});
    }
    SparkplugMessages messages =
        session.data(run, isHistorical(*changes), unsignedTime(QDateTime::currentMSecsSinceEpoch()));
    into = messages.empty() ? MqttMessage() : mqttMessage(std::move(messages.front()));
    return run.size();
}

MessageMeaning SparkplugLayout::read(const MqttMessage& message) {
    const std::string& primaryHost = settings.session.primaryHost;
    if (primaryHost.empty() || message.topic != sparkplugStateTopic(primaryHost))
        return readOrder(message);
    MessageMeaning meaning;
    SparkplugMessages said =
        session.hostSaid(message.payload, unsignedTime(QDateTime::currentMSecsSinceEpoch()));
    if (said.empty())
        return meaning;
    meaning.wantsBirth = session.isBorn();
    meaning.endsSession = !session.isBorn();
    if (session.isBorn())
        pendingBirth = mqttMessages(std::move(said));
    return meaning;
}

// What is retained would come again with each connection.
MessageMeaning SparkplugLayout::readOrder(const MqttMessage& message) {
    MessageMeaning meaning;
    if (message.isRetained)
        return meaning;
    const SparkplugOrder order = session.orderOf(message.topic, message.payload);
    for (const std::string& fault : order.faults)
        settings.tell("a command by Sparkplug is refused: " + fault);
    if (order.isRebirth) {
        pendingBirth = mqttMessages(session.rebirth(unsignedTime(QDateTime::currentMSecsSinceEpoch())));
        meaning.wantsBirth = !pendingBirth.empty();
    }
    for (const auto& [index, value] : order.values) {
        const PointRef ref = store.points().at(index);
        CommandRequest request;
        request.point = session.deviceOf(index) + "/" + ref.point->name;
        const std::optional<double> number = numberOf(value);
        if (!settings.takesCommands)
            request.refusal = "the site file has no commands = true in [mqtt]";
        else if (!number)
            request.refusal = "a text is no value for it";
        else
            addCommand(request, ref, *number);
        meaning.commands.push_back(std::move(request));
    }
    return meaning;
}

std::optional<MqttMessage> SparkplugLayout::result(const CommandRequest& request,
                                                   const CommandResult& result) {
    if (!result.isDone)
        settings.tell("the command to " + request.point + " by Sparkplug has failed: " + result.word +
                      (result.why.empty() ? "" : "; " + result.why));
    return std::nullopt;
}

} // namespace host
