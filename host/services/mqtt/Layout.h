#pragma once

#include "MqttMessage.h"
#include "commands/Command.h"
#include "values/ValueStore.h"

#include <optional>
#include <string>
#include <vector>

// What a layout is asked for: how a site becomes topics and payloads, and messages become commands.
namespace host {

// A change to be told.
struct ToldChange {
    PointIndex index = 0;
    PointState state;
    bool isHistorical = false; // it happened while nobody could be told
};

enum class RtuCondition { Unknown, Online, Offline, Disabled };

// Where the result of a command goes.
struct ReplyPlace {
    std::string topic;       // empty: nowhere
    std::string correlation; // for MQTT 5, repeated as it came
    std::string id;          // as JSON, repeated as it came; empty: none
};

// A command that came in a message.
struct CommandRequest {
    Command command;
    std::string point;   // for people
    std::string refusal; // not empty: why it is not given in
    std::string key; // two with the same key are one command, sent twice; empty: it is never another's like
    ReplyPlace reply;
};

// How it ended.
struct CommandResult {
    bool isDone = false;
    std::string word; // "success", "time-out", "refused"
    std::string why;  // for people; may be empty
};

// What a message that came is about.
struct MessageMeaning {
    std::vector<CommandRequest> commands;
    bool wantsBirth = false;  // everything is to be said anew
    bool endsSession = false; // the connection is to be ended in order and made anew
};

// What is to come from the broker.
struct Subscription {
    std::string filter;
    bool wantsRetained = false; // what was published before, too
};

// Pure, but for what it remembers between calls; one thread. Called in this order: will(), subscriptions()
// and birth() once for each connection, then all others, and death() where it ends in order.
class Layout {
public:
    Layout() = default;
    Layout(const Layout&) = delete;
    Layout& operator=(const Layout&) = delete;
    virtual ~Layout() = default;

    // What the broker publishes when the connection breaks.
    virtual MqttMessage will(qint64 nowMs) = 0;
    virtual std::vector<Subscription> subscriptions() const = 0;
    // What is said first, and again where a message that came wants it.
    virtual std::vector<MqttMessage> birth(qint64 nowMs) = 0;
    // What is said last.
    virtual std::vector<MqttMessage> death(qint64 nowMs) = 0;
    // Whether the current values of all points are to be told after the birth and what was kept.
    virtual bool wantsCurrentValues() const = 0;
    // Whether somebody listens to changes; as long as nobody does, they are kept.
    virtual bool isListenedTo() const { return true; }

    // Appends what is to be said of a line or an RTU whose condition has changed, and of all after a birth.
    virtual void tellLine(const Channel& channel, bool isConnected, qint64 nowMs,
                          std::vector<MqttMessage>& into) = 0;
    virtual void tellRtu(const PointTable::Block& block, RtuCondition condition, qint64 nowMs,
                         std::vector<MqttMessage>& into) = 0;
    // Nothing of what was kept is left to be told; once behind each birth.
    virtual void tellCaughtUp(qint64, std::vector<MqttMessage>&) {}
    // Makes a message of the first changes of those given, one or more. Returns of how many. A message
    // without a topic: nothing is to be said of them.
    virtual std::size_t tellChanges(const ToldChange* changes, std::size_t count, MqttMessage& into) = 0;

    virtual MessageMeaning read(const MqttMessage& message) = 0;
    // Nothing where results have no place.
    virtual std::optional<MqttMessage> result(const CommandRequest& request, const CommandResult& result) = 0;
};

} // namespace host
