#pragma once

#include <string>

namespace host {

// What is published, either way. The last three are properties of MQTT 5, empty where there is none.
struct MqttMessage {
    std::string topic;
    std::string payload;
    int qos = 1;
    bool isRetained = false;
    std::string contentType = {};
    std::string responseTopic = {};
    std::string correlation = {};
};

} // namespace host
