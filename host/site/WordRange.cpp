#include "WordRange.h"

#include "ElementAddress.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace host {

WordRange wordRangeOf(char media) {
    if (isBitMedia(media))
        return {0, 1};
    return {media == 'R' ? std::numeric_limits<std::int32_t>::min() : 0,
            std::numeric_limits<std::int32_t>::max()};
}

bool isWordOf(char media, double value) {
    const WordRange range = wordRangeOf(media);
    return std::trunc(value) == value && value >= static_cast<double>(range.lowest) &&
           value <= static_cast<double>(range.highest);
}

} // namespace host
