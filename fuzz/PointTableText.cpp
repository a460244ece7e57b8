#include "FuzzInput.h"
#include "site/PointTableFile.h"

#include <ControlCharacters.h>
#include <Utf8.h>

// Point tables. What is returned without an error is a point that can be read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    host::Findings findings;
    const std::vector<host::Point> points = host::readPointTable(text, "points.csv", {"comment"}, findings);
    findings.finish();
    for (const host::Point& point : points) {
        require(text::findInvalidUtf8(point.name) == std::string::npos, "names are UTF-8");
        require(findings.hasErrors() || text::findControl(point.name) == std::string::npos,
                "a name is one line of what can be shown");
        require(point.address.number <= host::highestElement, "an element number travels as 16 bits");
        require(host::isBitMedia(point.address.media) == (point.kind == host::PointKind::Status),
                "bits are status points, words analog ones");
    }
    return 0;
}
