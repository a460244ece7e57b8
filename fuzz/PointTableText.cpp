#include "FuzzInput.h"
#include "site/PointTableFile.h"

// Point tables. What is returned without an error is a point that can be read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    host::Findings findings;
    const std::vector<host::Point> points = host::readPointTable(text, "points.csv", findings);
    for (const host::Point& point : points) {
        require(point.address.number <= host::highestElement, "an element number travels as 16 bits");
        require(host::isBitMedia(point.address.media) == (point.kind == host::PointKind::Status),
                "bits are status points, words analog ones");
    }
    return 0;
}
