#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include <functional>
#include <string>
#include <vector>

// From where a program calls the system, as the library of FaultsPosix.cpp reports it.
struct Place {
    std::string kind;   // of the call: "open", "thread"
    std::string number; // the same in each run
    std::string calls;  // where it lies in the program's files
};

// How a run of the program has ended.
struct ProgramRun {
    bool hasFailed = false;   // the call that was to
    bool hasReturned = false; // in time
    bool hasCrashed = false;  // by a signal
    int status = -1;
    std::string output;
    std::string errors;
    std::vector<Place> places; // that it has reached
};

// A program with the library loaded before all others. Main thread.
class FaultyProgram {
public:
    // `during` is called when the program has started; it has to end soon after that returns.
    using During = std::function<void(QProcess&)>;

    FaultyProgram(QString programFile, QStringList programArguments);

    // Nothing fails.
    ProgramRun learn(const During& during = {});
    // The first call at this place fails.
    ProgramRun runWithout(const Place& place, const During& during = {});

private:
    ProgramRun run(const std::string& fault, const During& during) const;

    const QString file;
    const QStringList arguments;
};

// Those of a kind; when there are more than `most`, as many of them, from the first to the last.
std::vector<Place> placesOf(const std::vector<Place>& all, const std::string& kind, std::size_t most);

bool hasEnded(QProcess& program);
