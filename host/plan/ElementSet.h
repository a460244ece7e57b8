#pragma once

#include "ReadTelegram.h"

#include <map>

namespace host {

// The elements of some telegrams that do not overlap.
class ElementSet {
public:
    explicit ElementSet(const std::vector<ReadTelegram>& telegrams);

    bool contains(const ElementAddress& element) const;

private:
    std::map<ElementAddress, unsigned> lastOf; // by the first element of each telegram
};

} // namespace host
