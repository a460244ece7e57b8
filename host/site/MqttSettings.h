#pragma once

#include "SecretSource.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace host {

// "mqtt://127.0.0.1:1883", or "mqtts://..." for TLS.
struct BrokerUrl {
    std::string host; // a name, or an address without brackets
    std::uint16_t port = 1883;
    bool isSecure = false;

    // Whether what is sent there stays on this computer.
    bool isLoopback() const;
};

std::string toText(const BrokerUrl& url);
// Nothing for a text that is no such URL.
std::optional<BrokerUrl> parseBrokerUrl(const std::string& text);

// How values become topics and payloads.
enum class MqttLayout { Plain, Batch, Sparkplug };
enum class MqttVersion { V311, V5 };

// The table [mqtt] of a site file.
struct MqttSettings {
    BrokerUrl broker;
    std::string prefix = "sbus"; // one or more levels of a topic; in Sparkplug the group, which is one
    MqttLayout layout = MqttLayout::Plain;
    MqttVersion version = MqttVersion::V5;
    std::string primaryHost; // in Sparkplug, who is waited for; empty: nobody
    std::string user;        // empty: none
    std::optional<SecretSource> password;
    std::string caFile;      // empty: the authorities that the system trusts
    std::string certificate; // of this client, with keyFile; both empty: none
    std::string keyFile;
    std::string clientId; // empty: made of the site's name
    std::chrono::seconds keepAlive{30};
    int qos = 1;
    std::uint64_t backlogBytes = 100'000'000; // of changes that are kept while the broker is away
    bool takesCommands = false;
    Place place;
};

} // namespace host
