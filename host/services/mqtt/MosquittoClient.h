#pragma once

#include "BrokerClient.h"
#include "HostLookup.h"
#include "site/MqttSettings.h"

#include <optional>

struct mosquitto;
struct mosquitto_message;
struct mqtt5__property;

namespace host {

// A connection through libmosquitto, which is driven by exchange() alone and has no thread of its own.
// Secrets are read anew for each connection.
class MosquittoClient : public BrokerClient {
public:
    // Messages that may be on their way without an acknowledgement.
    static constexpr unsigned mostInFlight = 1'000;

    MosquittoClient(const MqttSettings& mqttSettings, std::string id);
    ~MosquittoClient() override;

    std::string connect(const MqttMessage& will) override;
    void exchange(std::chrono::milliseconds time, BrokerEvents& events) override;
    void subscribe(const Subscription& subscription) override;
    Publication publish(const MqttMessage& message) override;
    void disconnect() override;

private:
    using Properties = mqtt5__property;
    struct Callbacks; // what the library calls

    bool isV5() const { return settings.version == MqttVersion::V5; }
    std::string setUp(const MqttMessage& will);
    std::string setCredentials();
    std::string setTls();
    void setCallbacks();
    void open(BrokerEvents& events);
    void exchangeOnce(std::chrono::milliseconds time, BrokerEvents& events);
    void fail(int result, BrokerEvents& events);
    std::string failureText(int result) const;

    const MqttSettings settings;
    const std::string clientId;
    mosquitto* handle = nullptr;
    std::optional<HostLookup> lookup; // while the host's address is looked for
    BrokerEvents happened;            // since the last exchange
    std::string lastError;            // that the library has logged
};

} // namespace host
