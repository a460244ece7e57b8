#pragma once

#include "Layout.h"
#include "Topics.h"

#include <optional>
#include <string>

// Commands to single points: what is published to "POINT/set", and the answer to it. Pure.
namespace host {

constexpr std::size_t longestSetPayload = 4'096;    // bytes
constexpr std::size_t longestCorrelation = 256;     // bytes
constexpr std::size_t longestResponseTopic = 1'024; // bytes

// Nothing for a message to another topic, and for one whose sender must not get an answer, since it is one.
std::optional<CommandRequest> readSetMessage(const MqttMessage& message, const Topics& topics,
                                             const PointTable& points);
// Nothing when there is no place for it.
std::optional<MqttMessage> setResult(const CommandRequest& request, const CommandResult& result);

} // namespace host
