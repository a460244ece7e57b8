#pragma once

#include <cstddef>

namespace host {

// How many files and sockets the program may have open, after it was raised to `wanted` as far as the system
// lets it.
std::size_t raiseDescriptorLimit(std::size_t wanted);

} // namespace host
