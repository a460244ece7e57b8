#pragma once

#include <string>

// The end of what a program has to say on standard output. Main thread.

// How `program` ends that would end with `status`: with 1 in place of 0 when a part of its output is lost,
// which is told on standard error. Whoever has closed the pipe wants no more: nothing is lost then.
int statusWithOutput(const std::string& program, int status);
