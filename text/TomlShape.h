#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace text {

// What keeps a text from being given to a TOML parser, and where.
struct ShapeFault {
    unsigned line = 0;
    unsigned column = 0;
    std::string what;
    std::string remedy;
};

// Values may stand in 16 arrays and tables within each other, and a key may have 16 parts; site files have
// four. Parsers call themselves for each of them, so that a text which is nothing but brackets or dots would
// use up the stack. A text that is no UTF-8 is a fault too.
std::optional<ShapeFault> findTomlShapeFault(std::string_view toml);

} // namespace text
