// Of a program that is built without the history.
#include "HistoryCommand.h"

#include <iostream>

namespace host {

ExitStatus showHistory(const HistoryOptions&) {
    std::cerr << "sbus-host: this sbus-host was built without history; build it with SBUS_WITH_HISTORY\n";
    return ExitStatus::Configuration;
}

} // namespace host
