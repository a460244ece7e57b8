#include "RecentCommands.h"

namespace host {

const RecentCommands::Known* RecentCommands::findOrTake(const std::string& key, Time now) {
    while (!order.empty() && (order.size() >= mostKept || now - known[order.front()].taken > memory)) {
        known.erase(order.front());
        order.pop_front();
    }
    const auto found = known.find(key);
    if (found != known.end())
        return &found->second;
    known[key].taken = now;
    order.push_back(key);
    return nullptr;
}

void RecentCommands::noteResult(const std::string& key, const CommandResult& result) {
    const auto found = known.find(key);
    if (found != known.end())
        found->second.result = result;
}

} // namespace host
