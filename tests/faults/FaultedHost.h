#pragma once

#include "FaultyProgram.h"

#include <Simulator.h>

#include <memory>

// What came of a life of the host in which one call of the system has failed.
struct Life {
    ProgramRun run;
    bool hasEndedByItself = false;    // before it was asked to
    bool isFresh = false;             // all values were good in the end
    bool hasReply = false;            // to the command
    bool isSuccess = false;           // of the command, by its reply
    bool isWritten = false;           // the controller has what was commanded
    bool hasPulseReply = false;       // to the command that began a pulse
    bool isPulseOver = false;         // its output is off after the end
    std::size_t shown = 0;            // points with a value on standard output
    std::string messages;             // on standard error
    std::vector<std::string> missing; // files that should hold something and do not
};

// sbus-host with all that it can open: a line to a host name, a serial line, log files, a capture, a control
// socket and the state file of its pulses; and the simulated controllers that it polls. Main thread.
class FaultedHost {
public:
    static constexpr std::size_t points = 4;

    FaultedHost();

    // A whole life in which nothing fails.
    Life learn();
    // One in which the first call at this place fails.
    Life live(const Place& place);

private:
    using Running = std::function<ProgramRun(FaultyProgram&, const FaultyProgram::During&)>;

    Life live(const Running& running);
    void writeSite(const QString& path) const;
    void command(QProcess& host, Life& life);
    bool awaitFresh(QProcess& host) const;
    std::string ask(const std::string& request, const QProcess& host) const;
    QString pathOf(const char* name) const { return folder->filePath(QString::fromLatin1(name)); }

    std::unique_ptr<QTemporaryDir> folder; // of a life
    const QTemporaryDir deviceFolder;      // of the serial line
    sim::Simulator simulator;
    std::uint32_t lastValue = 100;
};
