#pragma once

#include "site/Site.h"

#include <vector>

namespace host {

// Two points of an RTU at one element, which one telegram reads for both; each shows it in its own format.
struct SharedElement {
    const Point* first = nullptr;
    const Point* other = nullptr;
};

// Of each element that has points in several formats the first one and the first of another format, by
// element; an integer comes first. The RTU outlives them.
std::vector<SharedElement> elementsInTwoFormats(const Rtu& rtu);

} // namespace host
