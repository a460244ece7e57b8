#pragma once

#include <cstddef>

// The bytes that the process has allocated and not freed, by the count of the system's allocator.
std::size_t heapBytes();
