#pragma once

#include "runtime/ExitStatus.h"
#include "symbols/SymbolColumns.h"

namespace host {

struct ImportOptions {
    std::vector<std::string> lists;
    std::string output;
    ChosenColumns columns;
    bool overwrites = false;
};

// Writes a point table of what symbol lists hold, and tells what was left out. Writes nothing when a list
// cannot be read or no symbol can be taken.
ExitStatus importSymbols(const ImportOptions& options);

} // namespace host
