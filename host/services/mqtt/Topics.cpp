#include "Topics.h"

#include <algorithm>
#include <set>

namespace host {

namespace {

bool isEscaped(unsigned char character) {
    constexpr unsigned char firstShown = 0x20;
    constexpr unsigned char deletion = 0x7F;
    return character < firstShown || character == deletion || character == '/' || character == '+' ||
           character == '#' || character == '$' || character == '%';
}

} // namespace

std::string topicLevel(const std::string& name) {
    const char* const digits = "0123456789ABCDEF";
    std::string level;
    for (const char character : name) {
        const auto code = static_cast<unsigned char>(character);
        if (!isEscaped(code)) {
            level += character;
            continue;
        }
        level += '%';
        level += digits[code >> 4];
        level += digits[code & 0xF];
    }
    return name.empty() ? "%" : level; // which no other name becomes
}

Topics::Topics(const std::string& prefix, const std::string& site, const PointTable& pointTable)
    : points(pointTable), siteTopic(prefix + "/" + topicLevel(site)) {
    std::set<std::string> taken;
    for (const PointTable::Block& block : points.blocks()) {
        if (lineTopics.count(block.channel) == 0) {
            std::string topic = siteTopic + "/" + topicLevel(block.channel->name);
            if (!taken.insert(topic).second)
                topic += "$" + std::to_string(block.channel->id);
            lineTopics.emplace(block.channel, topic);
        }
        rtuTopics.push_back(lineTopics[block.channel] + "/" + topicLevel(block.rtu->name));
        rtuBlocks.emplace(rtuTopics.back(), rtuTopics.size() - 1);
    }
}

std::string Topics::ofLine(const Channel& channel) const {
    return lineTopics.at(&channel);
}

const std::string& Topics::ofRtu(const PointTable::Block& block) const {
    return rtuTopics[points.placeOf(block)];
}

std::string Topics::ofPoint(PointIndex index) const {
    const PointTable::Block& block = points.blockOf(index);
    return ofRtu(block) + "/" + topicLevel(block.rtu->points[index - block.first].name);
}

std::optional<PointIndex> Topics::findPoint(const std::string& topic) const {
    const std::size_t stroke = topic.rfind('/');
    if (stroke == std::string::npos)
        return std::nullopt;
    const auto found = rtuBlocks.find(topic.substr(0, stroke));
    if (found == rtuBlocks.end())
        return std::nullopt;
    const PointTable::Block& block = points.blocks()[found->second];
    const std::string level = topic.substr(stroke + 1);
    const auto& all = block.rtu->points;
    const auto point = std::find_if(all.begin(), all.end(),
                                    [&level](const Point& one) { return topicLevel(one.name) == level; });
    if (point == all.end())
        return std::nullopt;
    return block.first + static_cast<PointIndex>(point - all.begin());
}

} // namespace host
