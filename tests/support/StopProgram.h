#pragma once

class QProcess;

// The ways in which a person or the system asks a running program to end.
enum class StopBy {
    Key,           // Ctrl-C
    System,        // SIGTERM; Ctrl-Break where there is no such signal
    ClosedTerminal // SIGHUP, or the event of a console that is closed
};

// Does not wait for the end.
void stopProgram(const QProcess& program, StopBy way = StopBy::System);
