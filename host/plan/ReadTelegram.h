#pragma once

#include "site/ElementAddress.h"

#include <string>
#include <vector>

namespace host {

// The elements of one read telegram: `count` of them from `first` on.
struct ReadTelegram {
    char media = 'R';
    unsigned first = 0;
    unsigned count = 0;

    unsigned last() const { return first + count - 1; }
};

inline bool operator==(const ReadTelegram& a, const ReadTelegram& b) {
    return a.media == b.media && a.first == b.first && a.count == b.count;
}

// "R10..20"
std::string toText(const ReadTelegram& telegram);

// Whether all elements of `inner` are among those of `outer`.
inline bool contains(const ReadTelegram& outer, const ReadTelegram& inner) {
    return outer.media == inner.media && outer.first <= inner.first && inner.last() <= outer.last();
}

} // namespace host
