#include "FuzzInput.h"
#include "site/PointTableFile.h"
#include "symbols/SymbolImport.h"

// Symbol lists. What is made of one is a point table without an error.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    host::Findings findings;
    host::SymbolImport import(host::parseColumns("symbol=1,type=2,address=3,comment=4").columns);
    import.read({reinterpret_cast<const char*>(data), size}, "symbols.csv", findings);
    host::leftOutLines(import.leftOut());
    if (import.points().size() > 1'000) // the reader of point tables has a target of its own
        return 0;
    host::Findings wrong;
    host::readPointTable(host::pointTableText(import.points()), "points.csv", {}, wrong);
    require(import.points().empty() || !wrong.hasErrors(), "what was imported is a good point table");
    return 0;
}
