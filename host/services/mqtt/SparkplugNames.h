#pragma once

#include "values/PointTable.h"

#include <string>

// What an edge node, its devices and their topics are called. Pure; any thread.
namespace host {

struct SparkplugNames {
    std::string group;
    std::string edgeNode;

    // "spBv1.0/GROUP/NBIRTH/NODE"
    std::string nodeTopic(const std::string& kind) const;
    // "spBv1.0/GROUP/DBIRTH/NODE/DEVICE"
    std::string deviceTopic(const std::string& kind, const std::string& device) const;
};

// "spBv1.0/STATE/HOST": where a primary host tells whether it is there.
std::string sparkplugStateTopic(const std::string& host);

// An RTU is a device: "LINE.RTU". What has a meaning in a topic, and a dot of the line's name, stand there as
// their numbers ("%2F" for "/"), so that no two RTUs meet in one name.
std::string sparkplugDevice(const Channel& channel, const Rtu& rtu);

} // namespace host
