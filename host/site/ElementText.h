#pragma once

#include "ElementAddress.h"

#include <string>
#include <vector>

// Elements and values as they are written on a command line.
namespace host {

struct ElementRead {
    ElementAddress address;
    bool isFloat = false;
    bool isIeee = false;
};

struct ParsedReads {
    std::vector<ElementRead> elements; // at least one, unless something is wrong
    std::string what;                  // what is wrong; empty when nothing is
    std::string remedy;
};
// "R10", "R10..20", "R30:float", "R30..33:ieee"
ParsedReads parseElementReads(const std::string& text);

struct ElementWrite {
    ElementAddress address;
    bool isFloat = false;
    double value = 0;
    bool isIeee = false;
};

struct ParsedWrite {
    ElementWrite write;
    std::string what; // what is wrong; empty when nothing is
    std::string remedy;
};
// "O200=1", "R10=-12", "R30:float=1.5", "R30:ieee=1.5", "T5=100". The value is one that its element can hold.
ParsedWrite parseElementWrite(const std::string& text);

} // namespace host
