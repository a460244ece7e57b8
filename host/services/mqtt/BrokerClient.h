#pragma once

#include "Layout.h"
#include "MqttMessage.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace host {

// What has happened at a connection.
struct BrokerEvents {
    bool hasConnected = false;
    std::string failure;           // not empty: the connection is over; what happened and what to check
    std::vector<int> acknowledged; // messages, by their ids
    std::size_t refused = 0;       // of those, by the broker
    std::string refusal;           // why it refused one of them, or a subscription; empty: it has not
    std::vector<MqttMessage> messages;
};

// What becomes of a message that is to be published.
struct Publication {
    enum class Fate { Sent, NeverSendable, ConnectionOver };

    Fate fate = Fate::Sent;
    int id = 0; // of one that was sent: what it is acknowledged with; of QoS 0 once it was written
};

// One connection to a broker, made once. States: made, connecting, connected, over. One thread.
class BrokerClient {
public:
    BrokerClient() = default;
    BrokerClient(const BrokerClient&) = delete;
    BrokerClient& operator=(const BrokerClient&) = delete;
    virtual ~BrokerClient() = default;

    // Empty, or why it cannot even be tried. The broker publishes the will should the connection break.
    virtual std::string connect(const MqttMessage& will) = 0;
    // Exchanges what is to be exchanged for so long.
    virtual void exchange(std::chrono::milliseconds time, BrokerEvents& events) = 0;
    virtual void subscribe(const Subscription& subscription) = 0;
    virtual Publication publish(const MqttMessage& message) = 0;
    // Ends the connection in order: the will is not published.
    virtual void disconnect() = 0;
};

using MakeBrokerClient = std::function<std::unique_ptr<BrokerClient>()>;

} // namespace host
