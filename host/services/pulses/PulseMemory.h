#pragma once

#include "PulseState.h"
#include "services/StateFile.h"

#include <memory>
#include <string>
#include <vector>

namespace host {

// Remembers running pulses beyond the end of the process, in a state file of the site file's own. Faults are
// texts that tell what happened and what to do; empty: all went well. One thread at a time.
class PulseMemory {
public:
    // Keeps its file in "sbus-host" in `directory`, or without one in $XDG_STATE_HOME or ~/.local/state.
    // Makes nothing yet.
    PulseMemory(const std::string& directory, const std::string& siteFile);

    // Whether an earlier host has left something.
    bool isThere() const { return file && file->isThere(); }
    // Nothing is remembered unless this succeeds.
    std::string open();

    struct Recalled {
        std::vector<RememberedPulse> pulses;
        std::string fault;
    };
    Recalled recall();
    // What runs now. Writes nothing when that is so already.
    std::string remember(const std::vector<RememberedPulse>& pulses);

private:
    const std::string sitePath;      // the real one
    std::unique_ptr<StateFile> file; // none: there is no place for it
    bool isOpen = false;
    std::string written;
};

} // namespace host
