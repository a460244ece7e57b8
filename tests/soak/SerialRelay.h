#pragma once

#include "LineTrouble.h"

#include <memory>
#include <string>

namespace soak {

// Passes bytes on between hosts and simulated controllers on pseudo terminals, and lets a trouble loose on
// them. POSIX only.
//
// States of each line: passes everything on untouched (as made, and healed) or in trouble. A thread of its
// own; operations on any other.
class SerialRelay {
public:
    SerialRelay();
    SerialRelay(const SerialRelay&) = delete;
    SerialRelay& operator=(const SerialRelay&) = delete;
    ~SerialRelay();

    // A line, counted from 0, to the controllers at `device`, where nobody else may listen. The device where
    // the host finds them.
    std::string addLine(const std::string& device);

    void trouble(int line, std::unique_ptr<LineTrouble> newTrouble);
    // Heals all lines; returns when what was held back has left as well.
    void heal();

private:
    struct Running;
    std::unique_ptr<Running> running;
};

} // namespace soak
