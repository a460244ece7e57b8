#pragma once

#include "values/PointTable.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace host {

// The topics of a site: "PREFIX/SITE/LINE/RTU/POINT", made of the names, and back.
//
// What has a meaning in topics, and what cannot be shown, stands in a name as "%" and two hexadecimal digits
// for each byte: "/" is "%2F". So no two names become one level. "$" is escaped, too, and marks levels of the
// gateway's own: "$state". A line that has the name of an earlier one has "$" and its id behind it.
//
// The table outlives it. Never changes: any thread.
class Topics {
public:
    Topics(const std::string& prefix, const std::string& site, const PointTable& pointTable);

    // "PREFIX/SITE"
    const std::string& root() const { return siteTopic; }
    std::string ofLine(const Channel& channel) const;
    // Of an RTU's block of points.
    const std::string& ofRtu(const PointTable::Block& block) const;
    std::string ofPoint(PointIndex index) const;
    // Nothing for a topic that is no point's.
    std::optional<PointIndex> findPoint(const std::string& topic) const;

private:
    const PointTable& points;
    const std::string siteTopic;
    std::unordered_map<const Channel*, std::string> lineTopics;
    std::vector<std::string> rtuTopics;                     // by block
    std::unordered_map<std::string, std::size_t> rtuBlocks; // by topic
};

// One level of a topic.
std::string topicLevel(const std::string& name);

} // namespace host
