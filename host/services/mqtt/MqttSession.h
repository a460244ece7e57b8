#pragma once

#include "BrokerClient.h"
#include "CommandDesk.h"
#include "Layout.h"
#include "Outbox.h"
#include "ReconnectPauses.h"
#include "runtime/FailureCollapser.h"
#include "services/PointChanges.h"
#include "services/RunningSite.h"

#include <atomic>
#include <deque>
#include <map>

namespace host {

// Keeps up a connection to a broker and passes what is to be told and done, in turns. States: away until the
// next try is due, connecting, connected. One thread, but for figures(). What it is made with outlives it.
class MqttSession {
public:
    using Clock = std::chrono::steady_clock;

    struct Settings {
        std::string broker; // for people: its URL
        MakeBrokerClient makeClient;
        ReconnectPauses::Settings pauses;
        std::chrono::milliseconds turn{15};                     // of an exchange with the broker
        std::chrono::milliseconds busyTurn{100};                // of a turn while there is more to tell
        std::chrono::milliseconds answerLimit{10'000};          // for a connection to come about
        std::chrono::milliseconds acknowledgementLimit{30'000}; // without any, while messages wait for it
        std::chrono::milliseconds statePeriod{1'000};           // how often lines and RTUs are looked at
        std::chrono::milliseconds keepPeriod{250};              // how often changes are kept while away
        std::chrono::milliseconds goodbye{400};                 // for what is left at the end
    };

    // The backlog may be null.
    MqttSession(Settings sessionSettings, RunningSite& runningSite, Layout& siteLayout,
                ChangeBacklog* changeBacklog);

    // Returns within moments, whatever the broker does.
    void turn();
    // Tells what is left as far as the time goes, keeps the rest, and ends the connection. No turn comes
    // after it.
    void end();
    std::vector<ServiceFigure> figures() const;

private:
    void beginConnection();
    void noteConnected();
    void tellBirth();
    void noteFailure(const std::string& why);
    void handle(const BrokerEvents& events);
    bool isProgressing(const BrokerEvents& events);
    void handleMessage(const MqttMessage& message);
    void readChanges();
    void tellStates();
    void tellAnswers();
    void sendChanges();
    void tellCaughtUp();
    void publish(const MqttMessage& message);
    void publishAll(const std::vector<MqttMessage>& messages);
    void exchange();
    void keepWhatIsLeft();
    void tellNews();
    void count();

    const Settings settings;
    RunningSite& site;
    Layout& layout;
    ChangeBacklog* const backlog;
    PointChanges changes;
    Outbox outbox;
    CommandDesk desk;
    ReconnectPauses pauses;
    FailureCollapser failures;

    std::unique_ptr<BrokerClient> client; // none: away
    bool isConnected = false;
    bool hasToldCaughtUp = false;
    bool isEnding = false;
    Clock::time_point nextTry{};
    Clock::time_point deadline{};     // of connecting
    Clock::time_point lastProgress{}; // of what was sent
    Clock::time_point nextKeep{};
    Clock::time_point nextStates{};
    std::map<int, bool> toldLines; // by channel
    std::map<const PointTable::Block*, RtuCondition> toldRtus;
    std::deque<CommandDesk::Answer> answers; // that could not be sent yet
    std::vector<PointChange> read;           // kept for its memory, as those that follow
    std::vector<PointChange> current;
    std::vector<ToldChange> waiting;

    struct Figures {
        std::atomic<std::uint64_t> connected{0};
        std::atomic<std::uint64_t> connections{0};
        std::atomic<std::uint64_t> sent{0};
        std::atomic<std::uint64_t> kept{0};
        std::atomic<std::uint64_t> missed{0};  // before they were read
        std::atomic<std::uint64_t> dropped{0}; // afterwards
        std::atomic<std::uint64_t> refusedMessages{0};
        std::atomic<std::uint64_t> commands{0};
        std::atomic<std::uint64_t> refusedCommands{0};
        std::atomic<std::uint64_t> repeatedCommands{0};
    };
    Figures figure;
};

} // namespace host
