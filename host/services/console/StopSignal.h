#pragma once

// SIGINT, SIGTERM and, unless the program was started to survive it, SIGHUP ask the program to end in order.
// A second one ends it at once. On Windows these are Ctrl-C, Ctrl-Break, a console that is closed, and the
// end of the user's session; for the last two the system gives the program five seconds.
namespace host::stopsignal {

void install();
bool isRequested();
// What a signal does. May be called in a signal handler, and by any thread.
void note();
// Asks the program to end in order, however often.
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
