#pragma once

// SIGINT and SIGTERM ask the program to end in order; a second one ends it at once.
namespace host::stopsignal {

void install();
bool isRequested();

} // namespace host::stopsignal
