#pragma once

namespace host {

// From now on the program ends with a message and a status, too, where Qt cannot go on: when it has no
// descriptor left for a thread's events. Main thread, first thing.
void takeQtMessages();

} // namespace host
