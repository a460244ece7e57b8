#include "IeeeWord.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace host {

static_assert(std::numeric_limits<float>::is_iec559 && sizeof(float) == sizeof(std::int32_t),
              "a float is what the register holds");

double numberOfIeeeWord(double word) {
    const auto bits = static_cast<std::int32_t>(word);
    float number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return static_cast<double>(number);
}

double ieeeWordOf(double number) {
    constexpr auto largest = static_cast<double>(std::numeric_limits<float>::max());
    const auto single = static_cast<float>(std::clamp(number, -largest, largest));
    std::int32_t bits = 0;
    std::memcpy(&bits, &single, sizeof bits);
    return static_cast<double>(bits);
}

} // namespace host
