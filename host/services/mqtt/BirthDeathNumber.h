#pragma once

#include "services/StateFile.h"

#include <cstdint>
#include <memory>
#include <string>

namespace host {

// The number of the last connection of a Sparkplug edge node, kept over restarts in a state file. Where it
// cannot be kept it counts from 0 for each process. One thread.
class BirthDeathNumber {
public:
    // `stateDirectory` as services take it; empty: the user's usual one.
    BirthDeathNumber(const std::string& directory, const std::string& siteFile);

    // Empty, or why it cannot be kept. Before the others.
    std::string open();
    std::uint8_t last() const;
    // Empty, or why it was not kept.
    std::string keep(std::uint8_t number);

private:
    std::unique_ptr<StateFile> file; // null: there is no place for it
    bool isOpen = false;
};

} // namespace host
