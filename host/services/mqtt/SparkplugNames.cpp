#include "SparkplugNames.h"

#include "Topics.h"

namespace host {

namespace {

const std::string space = "spBv1.0/";

std::string lastLevel(const std::string& topic) {
    return topic.substr(topic.rfind('/') + 1);
}

std::string withoutDots(const std::string& level) {
    std::string text;
    for (const char one : level)
        text += one == '.' ? std::string("%2E") : std::string(1, one);
    return text;
}

} // namespace

std::string SparkplugNames::nodeTopic(const std::string& kind) const {
    return space + group + '/' + kind + '/' + edgeNode;
}

std::string SparkplugNames::deviceTopic(const std::string& kind, const std::string& device) const {
    return nodeTopic(kind) + '/' + device;
}

std::string sparkplugStateTopic(const std::string& host) {
    return space + "STATE/" + host;
}

std::vector<std::string> sparkplugDevices(const PointTable& points) {
    const Topics topics({}, {}, points);
    std::vector<std::string> names;
    for (const PointTable::Block& block : points.blocks())
        names.push_back(withoutDots(lastLevel(topics.ofLine(*block.channel))) + '.' +
                        lastLevel(topics.ofRtu(block)));
    return names;
}

} // namespace host
