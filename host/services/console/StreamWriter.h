#pragma once

#include <chrono>
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
    explicit StreamWriter(std::ostream& stream);
    StreamWriter(const StreamWriter&) = delete;
    StreamWriter& operator=(const StreamWriter&) = delete;
    // Waits for no reader: what is not written is lost.
    ~StreamWriter();

    void write(std::string text);
    // All is written. Who has more to say than the reader may want looks here first: texts wait without
    // bound.
    bool isIdle() const;
    // False once a write has failed: nobody reads any more.
    bool isGood() const;
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
