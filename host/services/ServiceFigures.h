#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

// A figure that a service tells of itself: "clients" 3, "lost" 0.
struct ServiceFigure {
    std::string name;
    std::uint64_t value = 0;
};

// Those of one service.
struct ServiceFigures {
    std::string name; // the service's
    std::vector<ServiceFigure> figures;
};

} // namespace host
