#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>

namespace host {

// Writes to a stream on a thread of its own, so that a reader who does not read (a full pipe, a terminal that
// was stopped) holds up nobody but this thread.
// The stream must outlive the program's use of it: a write that never ends keeps thread and stream beyond the
// writer's end. Such a program can only be ended with _Exit.
// Threads: any; the texts of one thread stay in order.
class StreamWriter {
public:
    using AskForReader = std::function<bool()>;

    // Asks `isReaderGone`, on its own thread, when a write has failed. Throws ThreadRefused.
    explicit StreamWriter(
        std::ostream& stream, AskForReader isReaderGone = [] { return true; });
    StreamWriter(const StreamWriter&) = delete;
    StreamWriter& operator=(const StreamWriter&) = delete;
    // Waits for no reader: what is not written is lost.
    ~StreamWriter();

    void write(std::string text);
    // All is written. Who has more to say than the reader may want looks here first: texts wait without
    // bound.
    bool isIdle() const;
    // False once nobody reads any more.
    bool isGood() const;
    // What could not be written although somebody may read it. Later texts are tried all the same.
    struct Losses {
        std::uint64_t lines = 0;
        std::string reason; // of the first
    };
    Losses losses() const;
    // Whether all was written within `limit`.
    bool waitUntilIdle(std::chrono::milliseconds limit) const;

private:
    struct State;

    // Shared with the thread, which may outlive the writer.
    const std::shared_ptr<State> state;
};

// The two streams of a program that runs on while nobody reads them.
struct Console {
    Console();

    StreamWriter out;   // standard output
    StreamWriter error; // standard error
};

} // namespace host
