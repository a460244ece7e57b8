#pragma once

#include "values/PointTable.h"

#include <string>
#include <vector>

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

// An RTU is a device: "LINE.RTU", of the levels that stand for them in the topics of other layouts
// (Topics.h). A dot of the line's stands there as "%2E", so that no two RTUs meet in one name. In the order
// of the table's blocks.
std::vector<std::string> sparkplugDevices(const PointTable& points);

} // namespace host
