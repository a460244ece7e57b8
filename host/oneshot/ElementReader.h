#pragma once

#include "ReadBoard.h"
#include "plan/OneShotSite.h"
#include "runtime/HostRuntime.h"

#include <functional>
#include <optional>

namespace host {

// What one reading of all elements has given.
struct ReadRound {
    std::vector<Reading> readings;     // in the order of the elements
    std::vector<std::string> failures; // line, station, elements, what happened and what to check
    std::size_t refused = 0;           // elements that the controller refused
    bool isInterrupted = false;        // a signal ended it
};

// Reads elements of one controller through the plug-in, over and over if asked to. A telegram that finds no
// good answer is asked again; a refused one is not.
// States: made, open (after open). The line is closed with the object. Main thread.
class ElementReader {
public:
    using Progress = std::function<void(std::size_t read, std::size_t all)>;

    ElementReader(const ControllerLine& controllerLine, const std::vector<ElementRead>& elementsToRead);
    ~ElementReader();

    ExchangeFeed& exchanges() { return runtime.exchanges(); }
    // Empty, or why the plug-in does not run.
    std::string open(const std::string& pluginPath);
    // `progress` is called every now and then until the values are there.
    ReadRound read(const Progress& progress);

private:
    // The telegram of one RTU in this round.
    struct Chunk {
        unsigned tries = 0;
        std::string failure; // of the last try
        bool isRefused = false;
        bool isGivenUp = false;
    };

    const std::vector<Point>& pointsOf(std::size_t chunk) const { return channel().rtus[chunk].points; }
    const Channel& channel() const { return site.channels.front(); }
    bool isRead(std::size_t chunk) const;
    bool isSettled() const;
    void begin();
    void takeEnd(const RequestEnd& end);
    void judgeSilence(const RequestEnd& end);
    void giveUpAll(const std::string& reason);
    void ask(std::size_t chunk);
    ReadRound collect(bool isInterrupted) const;
    void addFailures(ReadRound& round) const;

    const ControllerLine line;
    const Site site;
    ReadBoard board;
    HostRuntime runtime; // ends before what it reports to
    bool isFirstRound = true;

    std::vector<Chunk> chunks;
    unsigned silentInARow = 0;
    bool hasAnswered = false; // in this round
};

} // namespace host
