#pragma once

#include <string>

// The end of what a sub-command has to say on standard output. Main thread.
namespace host {

// Writes out what is still to be written. Empty, or why something is lost. Whoever has closed the pipe wants
// no more: nothing is lost then.
std::string finishOutput();

// How a program ends that would end with `status`: with 1 in place of 0 when a part of its output is lost,
// which is told on standard error.
int statusWithOutput(int status);

} // namespace host
