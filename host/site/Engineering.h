#pragma once

#include "Scaling.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>

namespace host {

// What makes of the number in a register, timer or counter what people understand. Many points have the same,
// so it is kept once for all of them.
struct Engineering {
    Scaling scaling;
    double deadband = 0;                  // changes of the value that are smaller are not told; 0: all are
    std::optional<std::uint8_t> decimals; // to which the value is rounded where it is shown
    std::string unit;                     // empty: none
};

// Keeps one of all that are equal. One thread.
class EngineeringPool {
public:
    // Null for what changes nothing.
    std::shared_ptr<const Engineering> take(Engineering engineering);

private:
    using Key = std::tuple<double, double, double, std::optional<std::uint8_t>, std::string>;
    std::map<Key, std::shared_ptr<const Engineering>> kept;
};

} // namespace host
