#include "MqttSession.h"

#include <QDateTime>

#include <algorithm>
#include <utility>

namespace host {

namespace {

constexpr std::size_t mostReadAtOnce = 20'000;      // changes in a turn
constexpr std::size_t mostCurrentAtOnce = 2'000;    // current values in a turn
constexpr std::size_t mostMessagesInFlight = 1'000; // without an acknowledgement
constexpr std::size_t peekedAtOnce = 2'000;         // changes
constexpr std::size_t mostAnswers = 1'000;          // that wait for a connection

constexpr FailureCollapser::Source theBroker{0, 0};

int kindOf(const std::string& failure) {
    return static_cast<int>(std::hash<std::string>()(failure));
}

RtuCondition conditionOf(const RtuFigures& figures) {
    if (!figures.rtu->enabled)
        return RtuCondition::Disabled;
    if (figures.status.requests == 0)
        return RtuCondition::Unknown;
    return figures.status.connected ? RtuCondition::Online : RtuCondition::Offline;
}

qint64 nowMs() {
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace

MqttSession::MqttSession(Settings sessionSettings, RunningSite& runningSite, Layout& siteLayout,
                         ChangeBacklog* changeBacklog)
    : settings(std::move(sessionSettings)), site(runningSite), layout(siteLayout), backlog(changeBacklog),
      changes(runningSite.values), outbox(changeBacklog), desk(runningSite.commands),
      pauses(settings.pauses) {}

void MqttSession::turn() {
    if (!client && Clock::now() >= nextTry)
        beginConnection();
    const Clock::time_point end = Clock::now() + settings.busyTurn;
    do {
        readChanges();
        tellAnswers();
        if (isConnected) {
            tellStates();
            sendChanges();
            tellCaughtUp();
        }
        if (client)
            exchange();
    } while (isConnected && !outbox.isEmpty() && Clock::now() < end);
    outbox.settle();
    tellNews();
    count();
}

void MqttSession::beginConnection() {
    client = settings.makeClient();
    deadline = Clock::now() + settings.answerLimit;
    if (const std::string fault = client->connect(layout.will(nowMs())); !fault.empty())
        noteFailure(fault);
}

void MqttSession::noteConnected() {
    isConnected = true;
    pauses.noteConnected(Clock::now());
    ++figure.connections;
    if (failures.succeeded(theBroker, {}))
        site.messages.tell("MQTT: " + settings.broker + " is connected; " + std::to_string(outbox.kept()) +
                               " changes were kept meanwhile",
                           Severity::Note);
    outbox.noteConnected();
    for (const Subscription& one : layout.subscriptions())
        client->subscribe(one);
    tellBirth();
    toldLines.clear();
    toldRtus.clear();
    nextStates = {};
    if (layout.wantsCurrentValues())
        changes.beginCurrent();
}

void MqttSession::tellBirth() {
    publishAll(layout.birth(nowMs()));
    hasToldCaughtUp = false;
}

void MqttSession::noteFailure(const std::string& why) {
    client.reset();
    isConnected = false;
    nextTry = pauses.noteEnd(Clock::now());
    outbox.noteAway();
    if (isEnding)
        return;
    const std::string text = "MQTT: " + settings.broker + ": " + why;
    if (const auto told = failures.failed(theBroker, kindOf(why), text, Clock::now()))
        site.messages.tell(*told, Severity::Warning);
}

void MqttSession::exchange() {
    BrokerEvents events;
    client->exchange(settings.turn, events);
    handle(events);
}

void MqttSession::handle(const BrokerEvents& events) {
    for (const int id : events.acknowledged)
        outbox.noteAcknowledged(id);
    figure.refusedMessages += events.refused;
    if (!events.refusal.empty()) {
        const std::string text = "MQTT: " + settings.broker + ": " + events.refusal;
        if (const auto told = failures.failed({0, 1}, kindOf(events.refusal), text, Clock::now()))
            site.messages.tell(*told, Severity::Warning);
    }
    if (!events.failure.empty()) {
        noteFailure(events.failure);
        return;
    }
    if (events.hasConnected && !isConnected)
        noteConnected();
    if (!isConnected && Clock::now() >= deadline) {
        noteFailure("the broker does not answer; look whether it is a broker, and at the network");
        return;
    }
    if (isConnected && !isProgressing(events)) {
        noteFailure("the broker has acknowledged nothing for a while; look at its log and its load");
        return;
    }
    for (const MqttMessage& message : events.messages)
        handleMessage(message);
}

// A broker that answers pings and takes nothing any more would have messages pile up.
bool MqttSession::isProgressing(const BrokerEvents& events) {
    const Clock::time_point now = Clock::now();
    if (!events.acknowledged.empty() || events.hasConnected || outbox.messagesInFlight() == 0)
        lastProgress = now;
    return now - lastProgress < settings.acknowledgementLimit;
}

void MqttSession::handleMessage(const MqttMessage& message) {
    if (!client || isEnding)
        return;
    const MessageMeaning meaning = layout.read(message);
    for (const CommandRequest& request : meaning.commands)
        desk.take(request, Clock::now());
    if (meaning.wantsBirth)
        tellBirth();
    if (!meaning.endsSession)
        return;
    publishAll(layout.death(nowMs()));
    client->disconnect();
    noteFailure("the connection is made anew, as another client has asked for");
}

// While the broker is away they wait in the store's memory for a while, so that the disk has less to do.
void MqttSession::readChanges() {
    const Clock::time_point now = Clock::now();
    if (!isConnected && now < nextKeep)
        return;
    nextKeep = now + settings.keepPeriod;
    read.clear();
    changes.read(read, mostReadAtOnce);
    current.clear();
    if (isConnected && changes.isTellingCurrent() && read.size() < mostReadAtOnce && outbox.isNearlyEmpty())
        changes.readCurrent(read, current, mostCurrentAtOnce);
    outbox.add(read);
    outbox.addCurrent(current);
    const std::uint64_t missed = changes.takeMissed();
    figure.missed += missed;
    if (missed > 0)
        changes.beginCurrent();
}

void MqttSession::tellStates() {
    const Clock::time_point now = Clock::now();
    if (now < nextStates)
        return;
    nextStates = now + settings.statePeriod;
    const SiteFigures figures = site.figures();
    std::vector<MqttMessage> messages;
    const qint64 when = nowMs();
    for (const ChannelFigures& one : figures.channels) {
        const auto [told, isNew] = toldLines.try_emplace(one.channel->id, one.status.connected);
        if (isNew || told->second != one.status.connected)
            layout.tellLine(*one.channel, one.status.connected, when, messages);
        told->second = one.status.connected;
    }
    for (const RtuFigures& one : figures.rtus) {
        const PointTable::Block* const block = site.values.points().find(one.channel->id, one.rtu->id);
        const RtuCondition condition = conditionOf(one);
        const auto [told, isNew] = toldRtus.try_emplace(block, condition);
        if (isNew || told->second != condition)
            layout.tellRtu(*block, condition, when, messages);
        told->second = condition;
    }
    publishAll(messages);
}

void MqttSession::tellAnswers() {
    for (CommandDesk::Answer& answer : desk.takeAnswers())
        answers.push_back(std::move(answer));
    while (answers.size() > mostAnswers)
        answers.pop_front();
    if (!isConnected)
        return;
    for (const CommandDesk::Answer& answer : answers)
        if (const std::optional<MqttMessage> message = layout.result(answer.request, answer.result))
            publish(*message);
    answers.clear();
}

void MqttSession::sendChanges() {
    if (!layout.isListenedTo() || outbox.messagesInFlight() >= mostMessagesInFlight)
        return;
    outbox.peek(waiting, peekedAtOnce);
    std::size_t done = 0;
    MqttMessage message;
    while (done < waiting.size() && outbox.messagesInFlight() < mostMessagesInFlight) {
        const std::size_t count = layout.tellChanges(waiting.data() + done, waiting.size() - done, message);
        if (message.topic.empty()) {
            outbox.noteNeedless(count);
            done += count;
            continue;
        }
        const Publication publication = client->publish(message);
        if (publication.fate == Publication::Fate::ConnectionOver)
            return; // which the next exchange tells
        if (publication.fate == Publication::Fate::NeverSendable) {
            outbox.noteUnsendable(count);
        } else {
            outbox.noteSent(publication.id, count);
            figure.sent += count;
        }
        done += count;
    }
}

void MqttSession::tellCaughtUp() {
    if (hasToldCaughtUp || !layout.isListenedTo() || outbox.holdsHistorical())
        return;
    hasToldCaughtUp = true;
    std::vector<MqttMessage> messages;
    layout.tellCaughtUp(nowMs(), messages);
    publishAll(messages);
}

void MqttSession::publish(const MqttMessage& message) {
    client->publish(message);
}

void MqttSession::publishAll(const std::vector<MqttMessage>& messages) {
    for (const MqttMessage& message : messages)
        publish(message);
}

void MqttSession::end() {
    isEnding = true;
    desk.abandon();
    keepWhatIsLeft();
    tellAnswers();
    const Clock::time_point last = Clock::now() + settings.goodbye;
    while (isConnected && !outbox.isEmpty() && Clock::now() < last) {
        sendChanges();
        exchange();
    }
    if (isConnected) {
        publishAll(layout.death(nowMs()));
        exchange();
    }
    if (isConnected) {
        client->disconnect();
        exchange();
    }
    outbox.noteAway();
    client.reset();
    isConnected = false;
    tellNews();
    count();
}

// All that the store still holds.
void MqttSession::keepWhatIsLeft() {
    do {
        read.clear();
        changes.read(read, mostReadAtOnce);
        outbox.add(read);
    } while (!read.empty());
}

void MqttSession::tellNews() {
    if (backlog == nullptr)
        return;
    if (const std::string news = backlog->takeNews(); !news.empty())
        site.messages.tell("MQTT: " + news, Severity::Warning);
}

void MqttSession::count() {
    figure.connected = isConnected ? 1 : 0;
    figure.kept = outbox.kept();
    figure.commands = desk.taken();
    figure.refusedCommands = desk.refused();
    figure.repeatedCommands = desk.repeated();
    figure.dropped = outbox.dropped();
}

std::vector<ServiceFigure> MqttSession::figures() const {
    return {{"connected", figure.connected},
            {"connections", figure.connections},
            {"sent", figure.sent},
            {"kept", figure.kept},
            {"lost", figure.missed + figure.dropped},
            {"refused messages", figure.refusedMessages},
            {"commands", figure.commands},
            {"refused commands", figure.refusedCommands},
            {"repeated commands", figure.repeatedCommands}};
}

} // namespace host
