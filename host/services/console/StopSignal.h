#pragma once

// SIGINT, SIGTERM and, unless the program was started to survive it, SIGHUP ask the program to end in order.
// A second one ends it at once.
namespace host::stopsignal {

void install();
bool isRequested();
// Asks the program to end in order, as a signal does.
void request();

// From now on a second signal is noted too, and a third one ends the program at once: for as long as there is
// something to be said before the end.
void holdSecond();
// A second one ends the program at once again.
void releaseSecond();
// Whether a second one has come while it was held.
bool isForced();
// Ends the program at once, as a second signal does.
[[noreturn]] void endAtOnce();

} // namespace host::stopsignal
