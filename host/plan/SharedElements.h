#pragma once

#include "site/Site.h"

#include <vector>

namespace host {

// Two points of an RTU at one element, which one telegram reads for both; each shows it in its own format.
struct SharedElement {
    const Point* integer = nullptr;
    const Point* floating = nullptr;
};

// The first two points of each element that has both formats, by element. The RTU outlives them.
std::vector<SharedElement> elementsInTwoFormats(const Rtu& rtu);

} // namespace host
