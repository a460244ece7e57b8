#pragma once

#include "Line.h"
#include "Setting.h"
#include "Site.h"

#include <memory>
#include <string>

namespace sim {

struct Options {
    Faults faults;               // of every line
    std::uint64_t seed = 1;      // of the faults
    bool move = false;           // let values move, see Movement.h
    bool pace = false;           // serial bytes take their time
    MemorySizes sizes;           // of every controller
    std::size_t records = 10000; // writes and clock settings remembered for each line, of each kind
};

enum class End { Primary, Secondary };

// Plays every controller of a site: binds the UDP ports, makes a pseudo-terminal for each serial end and
// answers on a thread of its own.
//
// States: stopped (as made) and running. Memories, counts, faults and silences live as long as the object and
// are there in both states; ports and devices only while running.
// Owns all of it. start() and stop() on one thread; everything else on any thread but the simulator's own.
// An unknown line, end or station: std::out_of_range.
class Simulator {
public:
    // Two lines with one id: std::invalid_argument.
    explicit Simulator(Site site, const Options& simulatorOptions = {});
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    // Empty when all ends are up, otherwise what stood against it; then none is.
    std::string start();
    void stop();
    bool isRunning() const { return running != nullptr; }

    const Site& site() const { return playedSite; }
    std::vector<int> stations(int lineId) const;
    Memory& memory(int lineId, int station);
    LineCounts counts(int lineId) const;

    // Empty, or why the element cannot be set.
    std::string apply(const Setting& setting);
    // From now on, and with the mishaps begun afresh from the seed.
    void setFaults(int lineId, const Faults& faults);
    // What a controller can do, from now on.
    void limit(int lineId, int station, const Abilities& abilities);
    // A silent controller neither obeys nor answers until it returns.
    void silence(int lineId, int station, bool silent);

    // Closes the line's ends: a serial device vanishes, a UDP port is bound no more.
    void cut(int lineId);
    void cut(int lineId, End end);
    // Brings them back at the same path or port. Empty, or what went wrong.
    std::string restore(int lineId);
    std::string restore(int lineId, End end);

    // The real port of a UDP end, also while it is cut. 0: a serial end, or stopped.
    std::uint16_t port(int lineId, End end = End::Primary) const;
    // The path of a serial end. Empty: a UDP end, cut, or stopped.
    std::string device(int lineId, End end = End::Primary) const;

private:
    struct Running;

    Line& line(int lineId) const;
    std::string openEnds();
    std::string startThread();
    void moveAndWait(Clock::time_point begin);
    // Calls function(LineEnd&) on the simulator's thread, waits for it and returns what it returned; while
    // stopped, calls nothing and returns a default.
    template <typename Function>
    auto onEnd(int lineId, End end, Function function) const;
    template <typename Function>
    void forEachEnd(int lineId, Function function) const;

    const Site playedSite;
    const Options options;
    std::map<int, std::unique_ptr<Line>> lines; // fixed after construction
    std::unique_ptr<Running> running;
};

} // namespace sim
