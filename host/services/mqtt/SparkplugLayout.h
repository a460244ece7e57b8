#pragma once

#include "Layout.h"
#include "SparkplugSession.h"

#include <functional>

namespace host {

// Sparkplug B: the host is an edge node named after the site, of the group that `prefix` names; each RTU is a
// device, each point a metric. What was kept goes out marked as historical, behind the births. NCMD asks for
// births; values of DCMD become commands, where the site file allows it. Results of commands have no place in
// the standard: those that fail are told to people. Reads the clock for the time stamps of messages.
class SparkplugLayout : public Layout {
public:
    struct Settings {
        SparkplugSession::Settings session;
        bool takesCommands = false;
        std::uint8_t lastBirthDeathSequence = 0; // of the connection before, of an earlier process too
        // Keeps the number of the connection that is about to be made.
        std::function<void(std::uint8_t)> keepBirthDeathSequence;
        std::function<void(const std::string&)> tell; // people, of a command that cannot be carried out
    };

    // The store outlives it.
    SparkplugLayout(Settings layoutSettings, const ValueStore& valueStore);

    MqttMessage will(qint64 nowMs) override;
    std::vector<Subscription> subscriptions() const override;
    std::vector<MqttMessage> birth(qint64 nowMs) override;
    std::vector<MqttMessage> death(qint64 nowMs) override;
    bool wantsCurrentValues() const override { return false; } // births hold them
    bool isListenedTo() const override { return session.isBorn(); }
    void tellLine(const Channel&, bool, qint64, std::vector<MqttMessage>&) override {}
    void tellRtu(const PointTable::Block& block, RtuCondition condition, qint64 nowMs,
                 std::vector<MqttMessage>& into) override;
    void tellCaughtUp(qint64 nowMs, std::vector<MqttMessage>& into) override;
    std::size_t tellChanges(const ToldChange* changes, std::size_t count, MqttMessage& into) override;
    MessageMeaning read(const MqttMessage& message) override;
    std::optional<MqttMessage> result(const CommandRequest& request, const CommandResult& result) override;

    static constexpr std::size_t mostMetrics = 1'000; // of one message of data

private:
    MessageMeaning readOrder(const MqttMessage& message);

    const Settings settings;
    const ValueStore& store;
    SparkplugSession session;
    std::vector<MqttMessage> pendingBirth; // that a message has asked for
    qint64 bornAtMs = 0;
};

} // namespace host
