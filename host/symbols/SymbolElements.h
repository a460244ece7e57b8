#pragma once

#include "site/ElementAddress.h"

#include <optional>
#include <string>

namespace host {

// The elements of a symbol: one, or a run of them.
struct SymbolElements {
    ElementAddress first;
    unsigned count = 1;
    bool isRange = false; // an array of one element is one too
    bool isFloat = false;
};

struct ParsedElements {
    std::optional<SymbolElements> elements;
    std::string reason; // why there are none: "it has no address"
};
// Of a symbol's type and address: "R" and "100", "Register Float" and "100..109", "" and "R 100 [10]".
ParsedElements parseSymbolElements(const std::string& type, const std::string& address);

} // namespace host
