#pragma once

#include <cstddef>

// How many files and sockets this program may have open at once.
namespace descriptors {

// Raises the limit as far as the system lets the program do so by itself.
void raiseLimit();
std::size_t limit();

} // namespace descriptors
