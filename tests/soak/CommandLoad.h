#pragma once

#include "TaggedPlant.h"

#include <condition_variable>
#include <deque>

namespace soak {

// Operators who command the set points of a running plant all the time: one command for each station, and the
// next when it has its result. Each command has a value of its own.
//
// States: commanding (as made), finished. Lives while the plant runs. Main thread.
class CommandLoad {
public:
    // Of each line, one station may be left alone.
    explicit CommandLoad(TaggedPlant& commandedPlant, int sparedStation = 0);
    CommandLoad(const CommandLoad&) = delete;
    CommandLoad& operator=(const CommandLoad&) = delete;
    ~CommandLoad();

    // Of serial lines: an acknowledge that comes late, or twice, can pass for that of the next command, and
    // in Break Mode any byte 06.
    void allowLateAcknowledges() { mayBeLate = true; }
    // Waits until the plant has ended so many requests besides the commands.
    void awaitPolls(std::uint64_t count);
    // Waits for a command that succeeds, gives no more, and waits for the results of those that were given.
    // Each has had exactly one; of each that succeeded, the element has held the value, or late acknowledges
    // are allowed and the one before it has been carried out.
    void finish();
    // Commands to other stations that were no success.
    int failuresBesides(int station) const;
    // "1203 commands, 1100 done"
    std::string figuresText() const;

private:
    struct Given {
        int lineId = 0;
        int station = 0;
        unsigned index = 0; // of the set point
        std::uint32_t value = 0;
        unsigned results = 0;
        bool isDone = false; // with success
    };

    struct Operator {
        int lineId = 0;
        int station = 0;
        std::uint16_t number = 0; // of the last command
        bool waits = false;       // for a result
    };

    std::uint64_t resultCount() const;
    int doneCount() const;
    void run();
    void commandNext(Operator& one);
    void expectResults();
    void expectElementsHeldTheValues();

    TaggedPlant& plant;
    bool mayBeLate = false;
    unsigned lateCount = 0;
    mutable std::mutex mutex;   // guards what follows
    std::deque<Given> commands; // a deque: its elements stay where they are
    std::vector<Operator> operators;
    std::atomic<bool> working{true};
    std::thread thread; // last: it works on all of the above
};

} // namespace soak
