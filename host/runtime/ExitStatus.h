#pragma once

namespace host {

// How the program ends, for whoever has started it.
enum class ExitStatus { Good = 0, CommunicationFailed = 1, Configuration = 2, SomeElements = 3, Refused = 4 };

} // namespace host
