#include "BatchLayout.h"

#include "values/ChangeText.h"

#include <algorithm>

namespace host {

std::size_t BatchLayout::tellChanges(const ToldChange* changes, std::size_t count, MqttMessage& into) {
    const PointTable::Block& block = points().blockOf(changes->index);
    into = {topics().ofRtu(block), "{\"values\":[", qos(), false, "application/json"};
    std::size_t done = 0;
    const auto belongsHere = [&](const ToldChange& change) {
        return change.index >= block.first && change.index < block.end() && into.payload.size() < fullPayload;
    };
    while (done < std::min(count, mostValues) && belongsHere(changes[done])) {
        into.payload += done == 0 ? "{\"point\":" : ",{\"point\":";
        into.payload += jsonText(points().at(changes[done].index).point->name);
        into.payload += ',';
        appendValue(into.payload, changes[done]);
        into.payload += '}';
        ++done;
    }
    into.payload += "]}";
    return done;
}

} // namespace host
