#include "SharedElements.h"

#include <map>
#include <utility>

namespace host {

namespace {

bool isSameFormat(const Point& one, const Point& other) {
    return one.isFloat == other.isFloat && one.isIeee == other.isIeee;
}

} // namespace

std::vector<SharedElement> elementsInTwoFormats(const Rtu& rtu) {
    std::map<std::pair<char, unsigned>, SharedElement> elements;
    for (const Point& point : rtu.points) {
        if (point.kind != PointKind::Analog)
            continue;
        SharedElement& element = elements[{point.address.media, point.address.number}];
        if (element.first == nullptr)
            element.first = &point;
        else if (element.other == nullptr && !isSameFormat(*element.first, point))
            element.other = &point;
    }
    std::vector<SharedElement> shared;
    for (auto& [address, element] : elements) {
        if (element.other == nullptr)
            continue;
        if (!element.other->isFloat && !element.other->isIeee)
            std::swap(element.first, element.other);
        shared.push_back(element);
    }
    return shared;
}

} // namespace host
