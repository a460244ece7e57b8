#pragma once

// Whoever reads standard output. Any thread.
namespace outputreader {

// Whether standard output is a pipe or a socket whose other side was closed. Tells so without a write; a full
// disk, or a terminal that is gone, is something else.
bool isGone();

} // namespace outputreader
