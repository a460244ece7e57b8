#pragma once

#include "MqttSettings.h"

namespace host {

class TomlTable;

// Reads the table [mqtt] of a site file. Nothing without it.
std::optional<MqttSettings> readMqttTable(TomlTable& root, const std::string& file, Findings& findings);

} // namespace host
