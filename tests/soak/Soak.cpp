#include "Soak.h"

#include <cstdlib>
#include <iostream>

namespace soak {

bool isLong() {
    const char* const wanted = std::getenv("SBUS_SOAK");
    return wanted != nullptr && std::string(wanted) == "1";
}

void tellFigures(const std::string& figures) {
    std::cout << "figures: " << figures << std::endl;
}

} // namespace soak
