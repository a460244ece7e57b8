#include "StreamWriter.h"

#include <condition_variable>
#include <iostream>
#include <mutex>
#include <thread>

namespace host {

struct StreamWriter::State {
    explicit State(std::ostream& target) : stream(target) {}

    void writeUntilClosed();
    bool isIdle() const { return waiting.empty() && !isWriting; }

    std::ostream& stream; // the writing thread's alone

    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    std::string waiting;
    bool isWriting = false;
    bool isGood = true;
    bool isClosed = false;
};

void StreamWriter::State::writeUntilClosed() {
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return isClosed || !waiting.empty(); });
        if (waiting.empty())
            return;
        std::string text;
        text.swap(waiting);
        isWriting = true;
        lock.unlock();
        stream << text << std::flush;
        const bool written = stream.good();
        lock.lock();
        isWriting = false;
        isGood = written;
        changed.notify_all();
    }
}

StreamWriter::StreamWriter(std::ostream& stream) : state(std::make_shared<State>(stream)) {
    std::thread([shared = state] { shared->writeUntilClosed(); }).detach();
}

StreamWriter::~StreamWriter() {
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->isClosed = true;
    state->waiting.clear();
    state->changed.notify_all();
}

void StreamWriter::write(std::string text) {
    const std::lock_guard<std::mutex> lock(state->mutex);
    if (state->waiting.empty())
        state->waiting = std::move(text);
    else
        state->waiting += text;
    state->changed.notify_all();
}

bool StreamWriter::isIdle() const {
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->isIdle();
}

bool StreamWriter::isGood() const {
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->isGood;
}

bool StreamWriter::waitUntilIdle(std::chrono::milliseconds limit) const {
    std::unique_lock<std::mutex> lock(state->mutex);
    return state->changed.wait_for(lock, limit, [this] { return state->isIdle(); });
}

Console::Console() : out(std::cout), error(std::cerr) {}

} // namespace host
