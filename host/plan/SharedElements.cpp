#include "SharedElements.h"

#include <map>
#include <utility>

namespace host {

std::vector<SharedElement> elementsInTwoFormats(const Rtu& rtu) {
    std::map<std::pair<char, unsigned>, SharedElement> elements;
    for (const Point& point : rtu.points) {
        if (point.kind != PointKind::Analog)
            continue;
        SharedElement& element = elements[{point.address.media, point.address.number}];
        const Point*& place = point.isFloat ? element.floating : element.integer;
        if (place == nullptr)
            place = &point;
    }
    std::vector<SharedElement> shared;
    for (const auto& [address, element] : elements)
        if (element.integer != nullptr && element.floating != nullptr)
            shared.push_back(element);
    return shared;
}

} // namespace host
