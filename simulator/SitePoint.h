#pragma once

#include "Media.h"

#include <optional>
#include <string>
#include <vector>

namespace sim {

// What the simulator knows of a point of the site: where it is, and in which form its register is read.
struct SitePoint {
    Media media = Media::Inputs;
    unsigned address = 0;
    bool isFloat = false; // the controller's floating-point word
    bool isIeee = false;  // the bits of an IEEE 754 number
};

// An address as people write it, "R30" or "r 030", and the point's format. Nothing for what is no address:
// the host tells what is wrong with it.
std::optional<SitePoint> parsePoint(const std::string& address, const std::string& format);

// The points of a table of comma-separated values, by its columns "address" and "format". Rows without an
// address are passed over; there are none in a file that cannot be read.
std::vector<SitePoint> readPointTable(const std::string& file);

} // namespace sim
