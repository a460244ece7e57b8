#pragma once

#include "RunCommand.h"

namespace host {

class ConsoleService;
struct Console;

// Looks after the standard output of a run, and tells on standard error what happens to it. Main thread.
//
// A pipe that its reader has closed ends a run that does nothing but print. One that was given a control
// socket by name, a capture or a log goes on for these. An output that cannot be written (a full disk, a
// terminal that is gone) ends nothing: its lines are lost and counted.
class OutputWatch {
public:
    OutputWatch(const RunOptions& options, Console& shownOn, const ConsoleService& consoleService);

    // To be asked every now and then: whether the run is over because nobody reads it.
    bool isOver();
    // At the end, when all was written: tells how many lines are lost. False when there are some.
    static bool tellLosses(Console& console);

private:
    const bool endsWithReader;
    Console& console;
    const ConsoleService& service;
    bool isReaderTold = false;
    bool isLossTold = false;
};

} // namespace host
